# What `cmake --install` puts in place, in three components that become the
# Debian packages (cmake/Packages.cmake): `runtime` the shared library with its
# SONAME link; `dev` the headers, the .so link, a pkg-config file and a CMake
# package (find_package(ai_camera) gives ai_camera::ai_camera); `tools` the
# programs aicam and aicam-sim, their manual pages and the udev rule.

# Debian's multiarch library directory (lib/x86_64-linux-gnu), under any prefix:
# GNUInstallDirs chooses it by itself only for the prefix /usr.
if(CMAKE_LIBRARY_ARCHITECTURE AND NOT DEFINED CACHE{CMAKE_INSTALL_LIBDIR})
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Object code libraries (LIBDIR)")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(AICAM_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ai_camera)

install(TARGETS ai_camera EXPORT ai_cameraTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES
  ${PROJECT_SOURCE_DIR}/Interface/ai_camera.h
  ${PROJECT_SOURCE_DIR}/Interface/ai_camera_ext.h
  ${PROJECT_BINARY_DIR}/include/ai_camera_version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

install(EXPORT ai_cameraTargets NAMESPACE ai_camera:: DESTINATION ${AICAM_CMAKE_DIR} COMPONENT dev)
# The library's dependencies are all private, so the package needs nothing else.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/ai_cameraConfig.cmake @ONLY CONTENT
  "include(\"\${CMAKE_CURRENT_LIST_DIR}/ai_cameraTargets.cmake\")\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ai_cameraConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/ai_cameraConfig.cmake
  ${PROJECT_BINARY_DIR}/ai_cameraConfigVersion.cmake
  DESTINATION ${AICAM_CMAKE_DIR} COMPONENT dev)

# The pkg-config file names the prefix it is installed under, decided at
# install time (cpack installs under /usr, `cmake --install --prefix P` under P).
set(AICAM_PC_PREFIX_AT_INSTALL "@AICAM_PC_PREFIX@")   # left for the install step to fill in
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/ai_camera.pc.in @ONLY CONTENT
"prefix=@AICAM_PC_PREFIX_AT_INSTALL@
libdir=\${prefix}/@CMAKE_INSTALL_LIBDIR@
includedir=\${prefix}/@CMAKE_INSTALL_INCLUDEDIR@

Name: ai_camera
Description: Drives an AI camera module over USB (serial control port and MJPEG video)
Version: @PROJECT_VERSION@
Libs: -L\${libdir} -lai_camera
Cflags: -I\${includedir}
")
install(CODE "
  set(AICAM_PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\")
  configure_file(\"${PROJECT_BINARY_DIR}/ai_camera.pc.in\" \"${PROJECT_BINARY_DIR}/pkgconfig/ai_camera.pc\" @ONLY)
  " COMPONENT dev)
install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/ai_camera.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# The udev rule for the module's nodes (group plugdev, /dev/aicam/ links, no
# ModemManager probing). udev reads /usr/lib/udev/rules.d and /etc/udev/rules.d;
# under another prefix, copy the file to /etc/udev/rules.d.
set(AICAM_UDEV_RULES_DIR lib/udev/rules.d CACHE STRING "udev rules directory, relative to the prefix unless absolute")
install(FILES ${PROJECT_SOURCE_DIR}/udev/70-ai-camera.rules DESTINATION ${AICAM_UDEV_RULES_DIR} COMPONENT tools)

# Installed into a system library directory, the programs find the library by
# themselves (and Debian forbids a search path); anywhere else they carry one.
list(FIND CMAKE_C_IMPLICIT_LINK_DIRECTORIES "${CMAKE_INSTALL_FULL_LIBDIR}" AICAM_SYSTEM_LIBDIR)
foreach(program aicam aicam-sim)
  if(TARGET ${program})
    if(AICAM_SYSTEM_LIBDIR EQUAL -1)
      set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    endif()
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  endif()
endforeach()
include(${CMAKE_CURRENT_LIST_DIR}/ManPages.cmake)

# The packages' names; the library's follows its SONAME, as Debian wants.
set(AICAM_PACKAGE_runtime libai-camera${PROJECT_VERSION_MAJOR})
set(AICAM_PACKAGE_dev libai-camera-dev)
set(AICAM_PACKAGE_tools ai-camera-tools)
set(AICAM_PACKAGE_python python3-aicam)

# Each package's copyright and changelog, as Debian wants them.
configure_file(${PROJECT_SOURCE_DIR}/packaging/changelog.in ${PROJECT_BINARY_DIR}/packaging/changelog @ONLY)
add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/packaging/changelog.gz
  COMMAND gzip -9nf -k ${PROJECT_BINARY_DIR}/packaging/changelog
  DEPENDS ${PROJECT_BINARY_DIR}/packaging/changelog VERBATIM)
add_custom_target(aicam_changelog ALL DEPENDS ${PROJECT_BINARY_DIR}/packaging/changelog.gz)
foreach(component runtime dev tools python)
  set(package ${AICAM_PACKAGE_${component}})
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright ${PROJECT_BINARY_DIR}/packaging/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package} COMPONENT ${component})
endforeach()

include(${CMAKE_CURRENT_LIST_DIR}/Packages.cmake)
