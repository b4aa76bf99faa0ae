# What saves time in a clean build. The release preset sets this option; a compiler cache works better without.
option(TESSEL_FAST_BUILD "Precompile headers, and compile each test program in one piece" OFF)

# The headers that most sources include, compiled once. A source file still includes what it uses: without this
# option, as in the clang preset, it gets nothing else.
set(standard_headers <algorithm> <array> <cmath> <cstddef> <cstdint> <filesystem> <functional> <limits> <map> <memory>
                     <optional> <span> <stdexcept> <string> <string_view> <utility> <vector>)

# tessel_precompile(TARGET [header...]): the standard headers and others, for this target alone.
function(tessel_precompile target)
    if(TESSEL_FAST_BUILD)
        target_precompile_headers(${target} PRIVATE ${standard_headers} ${ARGN})
    endif()
endfunction()

# tessel_share_headers(NAME HIDDEN LIBRARIES library... HEADERS header... TARGETS target...)
# The same once for several targets, whose compiler flags must be those of NAME: it links LIBRARIES, and HIDDEN says
# whether symbols are hidden. NAME defines nothing: g++ rejects a precompiled header with definitions that its user
# lacks.
function(tessel_share_headers name)
    cmake_parse_arguments(arg "HIDDEN" "" "LIBRARIES;HEADERS;TARGETS" ${ARGN})
    if(NOT TESSEL_FAST_BUILD)
        return()
    endif()
    add_library(${name} OBJECT "${PROJECT_SOURCE_DIR}/cmake/PrecompiledHeaders.cpp")
    target_link_libraries(${name} PRIVATE project_options ${arg_LIBRARIES})
    if(arg_HIDDEN)
        set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    endif()
    tessel_precompile(${name} ${arg_HEADERS})
    foreach(target IN LISTS arg_TARGETS)
        target_precompile_headers(${target} REUSE_FROM ${name})
    endforeach()
endfunction()
