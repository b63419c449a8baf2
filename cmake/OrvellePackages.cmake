# SPDX-License-Identifier: Apache-2.0
# `cpack -G DEB`: the package orvelle to run, orvelle-dev to build upon it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvelle)
set(CPACK_PACKAGE_VENDOR "The Orvelle developers")
set(CPACK_PACKAGE_CONTACT "The Orvelle developers <orvelle@localhost>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME orvelle)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION graphics)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION 
"Tells what can be known of a digital photograph: its file facts, camera,
compression and metadata, and where they contradict each other, and runs
analysis filters on it. This package holds the command orvelle and the
libraries liborvcore and liborvfilters.")
# Libraries by dpkg-shlibdeps; ExifTool is a program.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS libimage-exiftool-perl)
# Only the web searches ask servers, and they check them.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS ca-certificates)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The linker's cache is made anew when the libraries have come or gone.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/triggers")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME orvelle-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION 
"The headers of liborvcore and liborvfilters, and what CMake and pkg-config
need to find them.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "orvelle (= ${PROJECT_VERSION}), libwxgtk3.2-dev, libopencv-core-dev, \
libopencv-imgproc-dev, libboost-dev")
include(CPack)
