# Who may include whom is enforced by what a target can see: each group of folders is exposed through an include
# directory of its own, which holds nothing but links to those folders. Code includes "folder/File.h"; a folder that
# the target does not link to is not found.
#
#   vertana_expose(<interface target> <folder>...)
function(vertana_expose target)
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  foreach(folder IN LISTS ARGN)
    get_filename_component(parent ${root}/${folder} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${folder} ${root}/${folder} SYMBOLIC)
  endforeach()
  add_library(${target} INTERFACE)
  target_include_directories(${target} INTERFACE ${root})
endfunction()
