# Run by cpack once the packages are made (CPACK_POST_BUILD_SCRIPTS). CPack
# 3.25 writes the -dbgsym packages' md5sums with absolute paths and gives
# them no documentation directory: each is unpacked, given its md5sums and, as
# Debian's own debug packages have, a link to its package's documentation
# (copyright and changelog), and packed again.
foreach(deb IN LISTS CPACK_PACKAGE_FILES)
  get_filename_component(name "${deb}" NAME)
  if(NOT name MATCHES "^(([^_]+)-dbgsym)_.*\\.ddeb$")
    continue()
  endif()
  set(package ${CMAKE_MATCH_1})
  set(parent ${CMAKE_MATCH_2})
  set(root "${CPACK_TOPLEVEL_DIRECTORY}/dbgsym-repair/${package}")
  file(REMOVE_RECURSE "${root}")
  file(MAKE_DIRECTORY "${root}/..")
  execute_process(COMMAND dpkg-deb -R "${deb}" "${root}" COMMAND_ERROR_IS_FATAL ANY)
  file(MAKE_DIRECTORY "${root}/usr/share/doc")
  file(CREATE_LINK ${parent} "${root}/usr/share/doc/${package}" SYMBOLIC)
  file(GLOB_RECURSE files LIST_DIRECTORIES false FOLLOW_SYMLINKS RELATIVE "${root}" "${root}/usr/lib/*")
  list(SORT files)
  set(md5sums "")
  foreach(file IN LISTS files)
    file(MD5 "${root}/${file}" sum)
    string(APPEND md5sums "${sum}  ${file}\n")
  endforeach()
  file(WRITE "${root}/DEBIAN/md5sums" "${md5sums}")
  execute_process(COMMAND dpkg-deb --root-owner-group -b "${root}" "${deb}" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE "${root}")
endforeach()
