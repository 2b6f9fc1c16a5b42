# The synopsis is each description's first line (CPack takes it from there
# only while CPACK_PACKAGE_DESCRIPTION_SUMMARY keeps its default).
# `cpack -G DEB` makes the three Debian packages from the install components,
# each stripped, with its debugging symbols in a -dbgsym package beside it.
set(CPACK_PACKAGE_NAME libai-camera)
set(CPACK_PACKAGE_VENDOR "libai_camera developers")
set(CPACK_PACKAGE_CONTACT "libai_camera developers <ai-camera@example.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Installed under DESTDIR with the prefix /usr, so that the pkg-config file names /usr.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime dev tools python)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)   # the exact library version for -dev and the tools
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/RepairDebugPackages.cmake)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://example.org/ai-camera")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${AICAM_PACKAGE_runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# A shlibs file and the ldconfig trigger.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "drive an AI camera module over USB - shared library
libai_camera drives an AI camera module attached over USB: its serial
control port, which speaks a framed and checksummed command protocol, and
its UVC video node, whose MJPEG pictures it decodes. Applications enrol and
recognise faces, change the module's settings, upgrade its firmware and take
its pictures through a small C interface.
.
This package holds the shared library.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME ${AICAM_PACKAGE_dev})
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_DEBIAN_DEV_DESCRIPTION "drive an AI camera module over USB - development files
libai_camera drives an AI camera module attached over USB: its serial
control port and its MJPEG video node.
.
This package holds what programs that use the library are built with: the C
headers, the link to the shared library, a pkg-config file (ai_camera) and a
CMake package (find_package(ai_camera) gives the target ai_camera::ai_camera).")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ${AICAM_PACKAGE_tools})
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "drive an AI camera module over USB - command-line tools
libai_camera drives an AI camera module attached over USB: its serial
control port and its MJPEG video node.
.
This package holds aicam, which lists the attached modules and runs their
commands (faces, settings, recognition, snapshots, firmware upgrades) from a
shell, aicam-sim, a simulated module on a pseudo-terminal for trying
programs without the hardware, and the udev rule that gives the module's
nodes to group plugdev with stable links under /dev/aicam/.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME ${AICAM_PACKAGE_python})
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3, python3-numpy")
set(CPACK_COMPONENT_PYTHON_DEPENDS runtime)   # and so the exact library version
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "drive an AI camera module over USB - Python 3 package
libai_camera drives an AI camera module attached over USB: its serial
control port and its MJPEG video node.
.
This package holds aicam, a pure Python package on ctypes over the library:
one method per command of the module, pictures as NumPy arrays, reports
through callbacks or iterators, discovery, link events and the firmware
upgrade.")

find_program(AICAM_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(AICAM_DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  # The tools' dependency on our own library comes from the components' (an
  # exact version); dpkg-shlibdeps only needs to find the library, here.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
else()
  # Debian 12's FFmpeg 5.1 and C++ runtime, for machines without dpkg-dev.
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS
    "libavcodec59, libavdevice59, libavformat59, libavutil57, libswscale6, libstdc++6 (>= 12)")
endif()
include(CPack)
