# What the libraries of importers have in common. Part of the installed package, and used in this tree.

set(KESTREL_IMPORTER_EXPORTS "${CMAKE_CURRENT_LIST_DIR}/ImporterExports.map" CACHE INTERNAL "")

# kestrel_add_importer(NAME [source...])
# A plug-in NAME.so (no "lib" before it) that shows the world its two entries and nothing else.
function(kestrel_add_importer name)
    add_library(${name} MODULE ${ARGN})
    set_target_properties(${name} PROPERTIES
        PREFIX ""
        C_VISIBILITY_PRESET hidden
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_link_libraries(${name} PRIVATE Kestrel::importabi)
    if(CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF")
        # Holds back what templates of the standard library would export in spite of hidden visibility.
        target_link_options(${name} PRIVATE "LINKER:--version-script=${KESTREL_IMPORTER_EXPORTS}")
        set_target_properties(${name} PROPERTIES LINK_DEPENDS "${KESTREL_IMPORTER_EXPORTS}")
    endif()
endfunction()

# kestrel_add_importer_resource(TARGET RESOURCE FILE)
# Makes FILE, byte for byte, a resource of the plug-in: RESOURCE is its type and name, as in LUMEN.MyDialog.
# A note beside it leads the host to the resource in the loaded plug-in, whose file may have moved since.
# The property list and the kind resources come from <kestrel/importabi/Resources.h> instead.
function(kestrel_add_importer_resource target resource file)
    cmake_path(ABSOLUTE_PATH file NORMALIZE)
    set(extension c)
    if(CMAKE_CXX_COMPILER_LOADED)
        set(extension cpp)
    endif()
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}.${resource}.${extension}")
    file(CONFIGURE OUTPUT "${source}" @ONLY CONTENT [[
__asm__(".pushsection .ksres.@resource@, \"a\", %progbits\n"
        "1: .incbin \"@file@\"\n"
        "2:\n"
        ".popsection\n"
        ".pushsection .note.kestrel.resource, \"a\", %note\n"
        ".balign 4\n"
        ".long 8, 4f - 3f, 1\n"
        ".asciz \"Kestrel\"\n"
        "3: .long 1b - 3b, 2b - 1b\n"
        ".asciz \"@resource@\"\n"
        "4: .balign 4\n"
        ".popsection\n");
]])
    target_sources(${target} PRIVATE "${source}")
    # The assembler reads the file: the compiler names no dependency, and link-time optimisation loses it.
    set_source_files_properties("${source}" TARGET_DIRECTORY ${target} PROPERTIES
        OBJECT_DEPENDS "${file}" COMPILE_OPTIONS "-fno-lto" SKIP_PRECOMPILE_HEADERS ON)
endfunction()
