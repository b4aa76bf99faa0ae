# Run by CPack between installing the components into folders of their own and packing these: what Debian asks of a
# package beyond its files. Needs `gzip`, which every Debian system has.
find_program(GZIP gzip REQUIRED)

# When the sources changed last, where that is known: the same sources give the same packages.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND git log -1 --format=%ct
        WORKING_DIRECTORY "${CMAKE_CURRENT_LIST_DIR}" OUTPUT_VARIABLE changed OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(changed)
        set(ENV{SOURCE_DATE_EPOCH} "${changed}")
    endif()
endif()
string(TIMESTAMP DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)

# compress(FILE): into FILE.gz, the same at every run.
function(compress file)
    execute_process(COMMAND "${GZIP}" -9nf "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" upper)
    set(PACKAGE "${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
    set(VERSION "${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
    set(staged "${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}")
    if(NOT IS_DIRECTORY "${staged}")
        message(FATAL_ERROR "${staged}: nothing is installed there")
    endif()

    # mpv loads scripts from the folders of its configuration; Debian's packages put links there.
    if(component STREQUAL "mpv")
        set(scripts "${staged}/../etc/mpv/scripts")
        file(MAKE_DIRECTORY "${scripts}")
        file(CREATE_LINK "${CPACK_PACKAGING_INSTALL_PREFIX}/${CPACK_MPV_PLUGIN}" "${scripts}/tessel.so" SYMBOLIC)
    endif()

    set(documents "${staged}/share/doc/${PACKAGE}")
    file(MAKE_DIRECTORY "${documents}")
    configure_file("${CMAKE_CURRENT_LIST_DIR}/copyright.in" "${documents}/copyright" @ONLY)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/changelog.in" "${documents}/changelog.Debian" @ONLY)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md" "${documents}/changelog" COPYONLY)
    compress("${documents}/changelog.Debian")
    compress("${documents}/changelog")
    file(GLOB_RECURSE manual "${staged}/share/man/*")
    foreach(page IN LISTS manual)
        compress("${page}")
    endforeach()

    # The system's folders are searched anyway.
    file(GLOB_RECURSE binaries "${staged}/bin/*" "${staged}/lib/*")
    foreach(file IN LISTS binaries)
        if(IS_SYMLINK "${file}")
            continue()
        endif()
        file(READ "${file}" magic LIMIT 4 HEX)
        if(magic STREQUAL "7f454c46")
            file(RPATH_REMOVE FILE "${file}")
        endif()
    endforeach()
endforeach()
