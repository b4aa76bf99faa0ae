# What saves time in a clean build. The presets for whole builds set this option; a compiler cache works better without.
option(TESSEL_FAST_BUILD "Compile many source files of a library or a test program as one" OFF)

# tessel_compile_together(TARGET...)
# With TESSEL_FAST_BUILD the source files of each target are compiled in pieces of up to 32: headers are read and
# templates instantiated once in each. So no two files of a target may define the same name, not even in unnamed
# namespaces. A source file still includes what it uses: without this option it gets nothing else.
function(tessel_compile_together)
    if(TESSEL_FAST_BUILD)
        set_target_properties(${ARGV} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 32)
    endif()
endfunction()

# tessel_compile_alone(SOURCE...)
# Leaves files out of the pieces. Their classes have members of types in an unnamed namespace, which g++ warns about
# unless the file is compiled alone.
function(tessel_compile_alone)
    set_source_files_properties(${ARGV} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# tessel_precompile(TARGET header...)
# Large headers that most files of a target include, where its files are compiled one by one. A piece reads each header
# once in any case.
function(tessel_precompile target)
    if(NOT TESSEL_FAST_BUILD)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()

# tessel_optimize_little(TARGET...)
# For texts, settings and windows, which wait for a person or run once in a command: in the release build -O1 takes a
# quarter to a half less time to compile than -O3. Not for code that runs for every pixel, sample or frame.
function(tessel_optimize_little)
    foreach(target IN LISTS ARGV)
        target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
    endforeach()
endfunction()
