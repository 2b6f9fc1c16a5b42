# What `cmake --install` puts in place, and the Debian package `cpack -G DEB`
# makes from it: the shared library with its SONAME links, the public
# headers, a pkg-config file, a CMake package (find_package(ai_camera) gives
# ai_camera::ai_camera), the udev rule, and the programs aicam and aicam-sim.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(AICAM_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ai_camera)

install(TARGETS ai_camera EXPORT ai_cameraTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES
  ${PROJECT_SOURCE_DIR}/Interface/ai_camera.h
  ${PROJECT_SOURCE_DIR}/Interface/ai_camera_ext.h
  ${PROJECT_BINARY_DIR}/include/ai_camera_version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The udev rule for the module's nodes (group plugdev, /dev/aicam/ links, no
# ModemManager probing). udev reads /usr/lib/udev/rules.d and /etc/udev/rules.d;
# under another prefix, copy the file to /etc/udev/rules.d.
set(AICAM_UDEV_RULES_DIR lib/udev/rules.d CACHE STRING "udev rules directory, relative to the prefix unless absolute")
install(FILES ${PROJECT_SOURCE_DIR}/udev/70-ai-camera.rules DESTINATION ${AICAM_UDEV_RULES_DIR})

install(EXPORT ai_cameraTargets NAMESPACE ai_camera:: DESTINATION ${AICAM_CMAKE_DIR})
# The library's dependencies are all private, so the package needs nothing else.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/ai_cameraConfig.cmake @ONLY CONTENT
  "include(\"\${CMAKE_CURRENT_LIST_DIR}/ai_cameraTargets.cmake\")\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ai_cameraConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/ai_cameraConfig.cmake
  ${PROJECT_BINARY_DIR}/ai_cameraConfigVersion.cmake
  DESTINATION ${AICAM_CMAKE_DIR})

# The prefix is found from the .pc file's own place, so any install prefix works.
file(RELATIVE_PATH AICAM_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" AICAM_PC_TO_PREFIX "${AICAM_PC_TO_PREFIX}")
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/ai_camera.pc @ONLY CONTENT
"prefix=\${pcfiledir}/@AICAM_PC_TO_PREFIX@
libdir=\${prefix}/@CMAKE_INSTALL_LIBDIR@
includedir=\${prefix}/@CMAKE_INSTALL_INCLUDEDIR@

Name: ai_camera
Description: Drives an AI camera module over USB (serial control port and MJPEG video)
Version: @PROJECT_VERSION@
Libs: -L\${libdir} -lai_camera
Cflags: -I\${includedir}
")
install(FILES ${PROJECT_BINARY_DIR}/ai_camera.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

foreach(program aicam aicam-sim)
  if(TARGET ${program})
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

set(CPACK_PACKAGE_NAME libai-camera)
set(CPACK_PACKAGE_VENDOR "libai_camera developers")
set(CPACK_PACKAGE_CONTACT "libai_camera developers <ai-camera@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "library, headers and tools to drive an AI camera module over USB")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
find_program(AICAM_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(AICAM_DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  # Debian 12's FFmpeg 5.1 and C++ runtime, for machines without dpkg-dev.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "libavcodec59, libavdevice59, libavformat59, libavutil57, libswscale6, libstdc++6 (>= 12)")
endif()
include(CPack)
