# Compiler settings that all of this project's own code shares: `project_options`.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# The build tree has its libraries in "lib" wherever an installed tree has them.
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../lib;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
list(REMOVE_DUPLICATES CMAKE_INSTALL_RPATH)
# The build tree has the shape of an installed one, so both use the same search path.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)

add_library(project_options INTERFACE)
target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wconversion
    # Pixels and samples must not depend on which -march flags somebody builds with.
    -ffp-contract=off)

if(TESSEL_SANITIZE STREQUAL "address")
    set(sanitizers -fsanitize=address,undefined,float-cast-overflow)
elseif(TESSEL_SANITIZE STREQUAL "thread")
    set(sanitizers -fsanitize=thread)
elseif(NOT TESSEL_SANITIZE STREQUAL "")
    message(FATAL_ERROR "TESSEL_SANITIZE is empty, address or thread, not '${TESSEL_SANITIZE}'")
endif()
if(TESSEL_FUZZERS)
    list(APPEND sanitizers -fsanitize=fuzzer-no-link)
endif()
if(sanitizers)
    target_compile_options(project_options INTERFACE
        ${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # Sanitized, g++ 12 takes parts of the standard library for uninitialised.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(project_options INTERFACE ${sanitizers})
endif()
