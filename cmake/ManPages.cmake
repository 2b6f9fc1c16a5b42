# Manual pages for aicam and aicam-sim, made at build time from their --help by
# help2man. Without help2man the build goes on without them (a package built
# so would lack them: scripts/bootstrap.sh installs it).
find_program(AICAM_HELP2MAN help2man)
if(NOT AICAM_HELP2MAN)
  message(STATUS "help2man not found: no manual pages for aicam and aicam-sim")
  return()
endif()

set(aicam_summary "drive an AI camera module over USB from the command line")
set(aicam-sim_summary "run a simulated AI camera module on a pseudo-terminal")
foreach(program aicam aicam-sim)
  if(NOT TARGET ${program})
    continue()
  endif()
  set(page ${PROJECT_BINARY_DIR}/man/${program}.1)
  add_custom_command(OUTPUT ${page}.gz
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man
    # The version comes from the project, not from the program's --version.
    COMMAND ${AICAM_HELP2MAN} --no-info --no-discard-stderr --name=${${program}_summary}
            --version-string=${PROJECT_VERSION} --output=${page} $<TARGET_FILE:${program}>
    COMMAND gzip -9nf ${page}
    DEPENDS ${program} VERBATIM)
  add_custom_target(${program}_man ALL DEPENDS ${page}.gz)
  install(FILES ${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endforeach()
