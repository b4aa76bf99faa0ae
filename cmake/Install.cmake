# What `cmake --install` puts into a prefix, in components: "program" (the program, the plug-in and the host's
# libraries), "windows" (what needs Qt) and "development" (the SDK: public headers, the CMake package and the
# pkg-config files); the modules in `integrations` install themselves, each as a component. The tree may be moved.
include(CMakePackageConfigHelpers)

set(package "${CMAKE_INSTALL_LIBDIR}/cmake/Kestrel")
set(pkgconfig "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

if(TARGET tessel)
    install(TARGETS tessel RUNTIME COMPONENT program)
    # Started by `tessel` from there, not by people.
    install(TARGETS tessel-movies RUNTIME DESTINATION "${CMAKE_INSTALL_LIBDIR}/tessel" COMPONENT program)
    # The scripts of docs/cluster.md.
    install(DIRECTORY examples/cluster DESTINATION "${CMAKE_INSTALL_DATADIR}/tessel" USE_SOURCE_PERMISSIONS
        COMPONENT program)
endif()
# A plug-in is no library to link, so it stands in the host's own folder.
install(TARGETS ImporterTessel LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/kestrel" COMPONENT program)
install(TARGETS kestrel kestrelui kestrelhost importabi EXPORT KestrelTargets
    LIBRARY COMPONENT program NAMELINK_COMPONENT development
    FILE_SET HEADERS COMPONENT development)
if(TARGET kestrelqt)
    # Loaded by its versioned name, never linked.
    install(TARGETS kestrelqt LIBRARY COMPONENT windows NAMELINK_SKIP)
    install(TARGETS kestrelqt_probe RUNTIME DESTINATION "${CMAKE_INSTALL_LIBDIR}/kestrel" COMPONENT windows)
endif()
if(TARGET tessel-view)
    install(TARGETS tessel-view RUNTIME DESTINATION "${CMAKE_INSTALL_LIBDIR}/tessel" COMPONENT windows)
endif()
if(TARGET libtessel)
    install(TARGETS libtessel EXPORT TesselTargets
        LIBRARY COMPONENT program NAMELINK_COMPONENT development
        FILE_SET HEADERS COMPONENT development)
endif()
if(TARGET conformance)
    install(TARGETS conformance RUNTIME COMPONENT development)
endif()

install(EXPORT KestrelTargets NAMESPACE Kestrel:: DESTINATION "${package}" COMPONENT development)
configure_package_config_file(cmake/sdk/KestrelConfig.cmake.in "${PROJECT_BINARY_DIR}/KestrelConfig.cmake"
    INSTALL_DESTINATION "${package}")
# As the SONAME says: before 1.0 each minor version may break, later each major one.
set(compatibility SameMajorVersion)
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(compatibility SameMinorVersion)
endif()
write_basic_package_version_file("${PROJECT_BINARY_DIR}/KestrelConfigVersion.cmake" COMPATIBILITY ${compatibility})
install(FILES
    "${PROJECT_BINARY_DIR}/KestrelConfig.cmake"
    "${PROJECT_BINARY_DIR}/KestrelConfigVersion.cmake"
    cmake/sdk/ImporterExports.map
    cmake/sdk/KestrelImporter.cmake
    DESTINATION "${package}" COMPONENT development)

# tessel_install_pkgconfig(NAME DESCRIPTION REQUIRES LIBS)
function(tessel_install_pkgconfig name description requires libs)
    file(RELATIVE_PATH fromPkgconfigToPrefix "/${pkgconfig}" "/")
    configure_file(cmake/sdk/library.pc.in "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${name}.pc" DESTINATION "${pkgconfig}" COMPONENT development)
endfunction()
tessel_install_pkgconfig(kestrel-importabi "The wire format between a host and its importer plug-ins" "" "")
tessel_install_pkgconfig(kestrel "What importer plug-ins link: media types, pixels, files, texts"
    kestrel-importabi "-L\${libdir} -lkestrel")
tessel_install_pkgconfig(kestrelui "Dialogs as models, and the language of their layouts"
    kestrel "-L\${libdir} -lkestrelui")
tessel_install_pkgconfig(kestrelhost "Loads importer plug-ins and drives them" kestrelui "-L\${libdir} -lkestrelhost")

if(TARGET libtessel)
    tessel_install_pkgconfig(tessel "Clips of .tessel documents, from C" "" "-L\${libdir} -ltessel")
    set(tesselPackage "${CMAKE_INSTALL_LIBDIR}/cmake/Tessel")
    install(EXPORT TesselTargets NAMESPACE Tessel:: DESTINATION "${tesselPackage}" FILE TesselConfig.cmake
        COMPONENT development)
    write_basic_package_version_file("${PROJECT_BINARY_DIR}/TesselConfigVersion.cmake"
        COMPATIBILITY ${compatibility})
    install(FILES "${PROJECT_BINARY_DIR}/TesselConfigVersion.cmake" DESTINATION "${tesselPackage}"
        COMPONENT development)
endif()

# The importer that docs/write-an-importer.md builds, and the C program of docs/c-interface.md.
install(DIRECTORY examples/flat-importer examples/c-frame DESTINATION "${CMAKE_INSTALL_DATADIR}/kestrel/examples" COMPONENT development)
