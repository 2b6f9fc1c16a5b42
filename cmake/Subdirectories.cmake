# Adds every directory below the current one that has a CMakeLists.txt, so that
# a component, tool or benchmark needs no line elsewhere.
function(aicam_add_subdirectories)
  file(GLOB entries LIST_DIRECTORIES true CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*)
  foreach(dir IN LISTS entries)
    if(IS_DIRECTORY ${dir} AND EXISTS ${dir}/CMakeLists.txt)
      add_subdirectory(${dir})
    endif()
  endforeach()
endfunction()
