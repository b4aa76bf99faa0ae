# Debian packages of what Install.cmake installs, one for each component; `./dev package` makes them. The staged files
# lose the search paths that a tree that may be moved needs: the dynamic loader knows the system's own folders.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessel)
set(CPACK_PACKAGE_VENDOR "Tessel")
set(TESSEL_PACKAGE_CONTACT "The developers of Tessel <tessel@tessel.example>" CACHE STRING
    "Who maintains the packages: name and address")
set(CPACK_PACKAGE_CONTACT "${TESSEL_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_OUTPUT_FILE_PREFIX "${CPACK_PACKAGE_DIRECTORY}")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/debian/FinishStaged.cmake")

set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program development)
if(TARGET kestrelqt)
    list(APPEND CPACK_COMPONENTS_ALL windows)
endif()
if(TARGET tessel_python)
    list(APPEND CPACK_COMPONENTS_ALL python)
endif()
if(TARGET mlttessel)
    list(APPEND CPACK_COMPONENTS_ALL mlt)
endif()
if(TARGET mpvtessel)
    list(APPEND CPACK_COMPONENTS_ALL mpv)
endif()
if(TARGET gsttessel)
    list(APPEND CPACK_COMPONENTS_ALL gstreamer)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What links to a library needs the package's very version until 1.0: each minor version may break it.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY "=")
# Where one of the packages needs a library of another, its `DEPENDS` below say so.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")

set(sameVersion "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME tessel)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS ffmpeg)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS tessel-qt)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/debian/triggers")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "Exact test signals from small documents
Tessel synthesises video and sound that are exactly what a short JSON
document says, every pixel and every sample, to test editors, encoders and
players. It renders clips to files, puts faults in on purpose, and names
what a chain did to a clip that came back.
.
This package has the program, the importer plug-in that makes the signals,
and the host that loads it.")
set(CPACK_DEBIAN_WINDOWS_PACKAGE_NAME tessel-qt)
set(CPACK_DEBIAN_WINDOWS_PACKAGE_SECTION video)
set(CPACK_DEBIAN_WINDOWS_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/debian/triggers")
set(CPACK_DEBIAN_WINDOWS_PACKAGE_DEPENDS "tessel ${sameVersion}")
set(CPACK_DEBIAN_WINDOWS_DESCRIPTION "Exact test signals from small documents - windows
The settings dialog of Tessel's clips, with a preview, and the player with
scopes and meters, as windows made with Qt 6. The program opens them where this
package is installed.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkestrel-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "tessel ${sameVersion}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Importer plug-ins and a host for them - development files
What it takes to write an importer plug-in for video-editing hosts, or a
program that loads one: headers, a CMake package, pkg-config files, a
program that checks importers, and an example.")

if(TARGET tessel_python)
    get_target_property(pythonVersion tessel_python TESSEL_PYTHON_VERSION)
    get_target_property(nextPythonVersion tessel_python TESSEL_NEXT_PYTHON_VERSION)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-tessel)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    # An extension module is for one minor version of Python.
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "tessel ${sameVersion}, python3-numpy, python3 (>= ${pythonVersion}), python3 (<< ${nextPythonVersion})")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS python3-pytest)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
        "${PROJECT_SOURCE_DIR}/packaging/debian/python/postinst" "${PROJECT_SOURCE_DIR}/packaging/debian/python/prerm")
    set(CPACK_DEBIAN_PYTHON_DESCRIPTION "Exact test signals from small documents - Python
The package tessel: clips as numpy arrays, movies compared with clips, and a
plug-in for pytest.")
endif()

if(TARGET mlttessel)
    set(CPACK_DEBIAN_MLT_PACKAGE_NAME mlt-tessel)
    set(CPACK_DEBIAN_MLT_PACKAGE_SECTION video)
    set(CPACK_DEBIAN_MLT_PACKAGE_DEPENDS "tessel ${sameVersion}")
    set(CPACK_DEBIAN_MLT_PACKAGE_SUGGESTS "melt, kdenlive")
    set(CPACK_DEBIAN_MLT_DESCRIPTION "Exact test signals from small documents - MLT
A module with which melt and editors that stand on MLT open Tessel's documents
like movies, without rendering them first.")
endif()

if(TARGET mpvtessel)
    set(CPACK_DEBIAN_MPV_PACKAGE_NAME mpv-tessel)
    set(CPACK_MPV_PLUGIN "${CMAKE_INSTALL_LIBDIR}/mpv-tessel/tessel.so") # for FinishStaged.cmake
    set(CPACK_DEBIAN_MPV_PACKAGE_SECTION video)
    set(CPACK_DEBIAN_MPV_PACKAGE_DEPENDS "tessel ${sameVersion}, mpv")
    set(CPACK_DEBIAN_MPV_DESCRIPTION "Exact test signals from small documents - mpv
A plug-in with which mpv plays Tessel's documents like movies, without
rendering them first.")
endif()

if(TARGET gsttessel)
    set(CPACK_DEBIAN_GSTREAMER_PACKAGE_NAME gstreamer1.0-tessel)
    set(CPACK_DEBIAN_GSTREAMER_PACKAGE_SECTION libs)
    set(CPACK_DEBIAN_GSTREAMER_PACKAGE_DEPENDS "tessel ${sameVersion}")
    set(CPACK_DEBIAN_GSTREAMER_PACKAGE_SUGGESTS "gstreamer1.0-tools, gstreamer1.0-plugins-base-apps")
    set(CPACK_DEBIAN_GSTREAMER_DESCRIPTION "Exact test signals from small documents - GStreamer
Clips of Tessel as sources in GStreamer's pipelines. With it players and other
programs that stand on GStreamer open the documents like movies.")
endif()

include(CPack)
