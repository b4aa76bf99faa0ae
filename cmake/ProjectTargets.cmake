# Before version 1.0 each minor version may break what links to the libraries.
set(TESSEL_SOVERSION "${PROJECT_VERSION_MAJOR}")
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(TESSEL_SOVERSION "0.${PROJECT_VERSION_MINOR}")
endif()

# tessel_set_version(TARGET): the project's version, and hidden symbols, for a library that others link.
function(tessel_set_version target)
    set_target_properties(${target} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        VERSION "${PROJECT_VERSION}"
        SOVERSION "${TESSEL_SOVERSION}")
endfunction()

# tessel_add_test(NAME name SOURCES file... [LIBRARIES library...] [PRECOMPILE header...])
# A GoogleTest program; each of its tests is one CTest test. CTest shows the names that a test gives its parameters, not
# their values, which may be bytes with addresses. The program's libraries may bring compiler flags with which the
# precompiled headers of other tests cannot be used: PRECOMPILE names the headers that this program precompiles instead.
function(tessel_add_test)
    cmake_parse_arguments(arg "" "NAME" "SOURCES;LIBRARIES;PRECOMPILE" ${ARGN})
    add_executable(${arg_NAME} ${arg_SOURCES})
    target_link_libraries(${arg_NAME} PRIVATE project_options test_options ${arg_LIBRARIES}
                                              GTest::gtest GTest::gtest_main)
    target_include_directories(${arg_NAME} PRIVATE "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/tests")
    if(arg_PRECOMPILE)
        tessel_precompile(${arg_NAME} ${arg_PRECOMPILE})
    else()
        target_precompile_headers(${arg_NAME} REUSE_FROM test_headers)
    endif()
    tessel_compile_together(${arg_NAME})
    set(cSources ${arg_SOURCES})
    list(FILTER cSources INCLUDE REGEX "\\.c$")
    set_source_files_properties(${cSources} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    set_target_properties(${arg_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/test-programs")
    set(timeout 300)
    if(TESSEL_SANITIZE)
        set(timeout 1500) # the thread sanitizer makes some ten times slower
    endif()
    gtest_discover_tests(${arg_NAME} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES TEST_PREFIX "${arg_NAME}: "
                         PROPERTIES TIMEOUT ${timeout})
endfunction()
