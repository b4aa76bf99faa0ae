# tessel_add_test(NAME name SOURCES file... [LIBRARIES library...])
# A GoogleTest program; each of its tests is one CTest test.
function(tessel_add_test)
    cmake_parse_arguments(arg "" "NAME" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${arg_NAME} ${arg_SOURCES})
    target_link_libraries(${arg_NAME} PRIVATE project_options ${arg_LIBRARIES} GTest::gtest GTest::gtest_main)
    target_include_directories(${arg_NAME} PRIVATE "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/tests")
    # The tests' own code need not be fast, and optimising it takes most of a build's time.
    target_compile_options(${arg_NAME} PRIVATE $<$<CONFIG:Release>:-O1>)
    set_target_properties(${arg_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/test-programs")
    gtest_discover_tests(${arg_NAME} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${arg_NAME}: "
                         PROPERTIES TIMEOUT 300)
endfunction()

# tessel_add_children()
# Adds every folder below this one that has a CMakeLists.txt.
function(tessel_add_children)
    file(GLOB children CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" */CMakeLists.txt)
    foreach(child IN LISTS children)
        get_filename_component(folder "${child}" DIRECTORY)
        add_subdirectory("${folder}")
    endforeach()
endfunction()
