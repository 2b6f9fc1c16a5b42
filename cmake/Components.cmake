# The library is built from one static library per subsystem so that each can
# be tested on its own; libai_camera.so links them all and exports only the
# functions marked in Interface/ai_camera.h.
set(AICAM_ROOT ${CMAKE_CURRENT_SOURCE_DIR})
# The version header, made from the project's version number.
set(AICAM_GENERATED_INCLUDE ${PROJECT_BINARY_DIR}/include)
configure_file(${AICAM_ROOT}/Interface/ai_camera_version.h.in ${AICAM_GENERATED_INCLUDE}/ai_camera_version.h @ONLY)

# aicam_component(NAME DEPENDS...): sources come from cmake/sources/NAME.cmake,
# which sets AICAM_SOURCES to paths relative to the source root.
function(aicam_component name)
  set(AICAM_SOURCES "")
  include(${AICAM_ROOT}/cmake/sources/${name}.cmake OPTIONAL)
  if(NOT AICAM_SOURCES)
    return()
  endif()
  list(TRANSFORM AICAM_SOURCES PREPEND ${AICAM_ROOT}/)
  add_library(aicam_${name} STATIC ${AICAM_SOURCES})
  target_include_directories(aicam_${name} PUBLIC ${AICAM_ROOT} ${AICAM_ROOT}/Interface ${AICAM_GENERATED_INCLUDE})
  foreach(dep IN LISTS ARGN)
    if(TARGET ${dep})
      target_link_libraries(aicam_${name} PUBLIC ${dep})
    endif()
  endforeach()
endfunction()

# One static library per folder, each on those below it:
#   OS <- Log <- Protocol <- Device -> Video, and Interface on top.
aicam_component(os Threads::Threads)
aicam_component(log aicam_os)
aicam_component(protocol aicam_log)
aicam_component(video aicam_log PkgConfig::FFMPEG)
aicam_component(device aicam_protocol aicam_video)
aicam_component(iface aicam_device)

# Everything the library holds, for tests and tools that reach inside it.
add_library(aicam_internal INTERFACE)
foreach(component iface device video protocol log os)
  if(TARGET aicam_${component})
    target_link_libraries(aicam_internal INTERFACE aicam_${component})
  endif()
endforeach()

set(AICAM_SHARED_ROOT os)
if(TARGET aicam_iface)
  set(AICAM_SHARED_ROOT iface)
endif()
add_library(ai_camera SHARED ${AICAM_ROOT}/cmake/empty.cpp)
target_link_libraries(ai_camera PRIVATE "$<LINK_LIBRARY:WHOLE_ARCHIVE,aicam_${AICAM_SHARED_ROOT}>")
target_include_directories(ai_camera PUBLIC
  $<BUILD_INTERFACE:${AICAM_ROOT}/Interface>
  $<BUILD_INTERFACE:${AICAM_GENERATED_INCLUDE}>
  $<INSTALL_INTERFACE:include>)
set_target_properties(ai_camera PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})
target_link_options(ai_camera PRIVATE -Wl,--no-undefined -Wl,--version-script=${AICAM_ROOT}/cmake/ai_camera.map)
set_property(TARGET ai_camera APPEND PROPERTY LINK_DEPENDS ${AICAM_ROOT}/cmake/ai_camera.map)
