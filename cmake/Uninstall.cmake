# Removes what MANIFEST lists, below DESTDIR when that is set, and those folders
# that are ours alone and empty then. What is gone already is no error.

# Our own folders are named velka, or stand in one that is.
function(remove_own_folder folder)
  while(folder MATCHES "/velka(/[^/]*)?$" AND IS_DIRECTORY "${folder}")
    execute_process(COMMAND rmdir "${folder}" RESULT_VARIABLE status ERROR_QUIET)
    if(NOT status EQUAL 0)
      return()
    endif()
    message("removed ${folder}")
    cmake_path(GET folder PARENT_PATH folder)
  endwhile()
endfunction()

cmake_path(REPLACE_FILENAME MANIFEST install_destdir.txt OUTPUT_VARIABLE stage_file)
if(EXISTS "${stage_file}")
  file(READ "${stage_file}" stage)
  if(NOT stage STREQUAL "$ENV{DESTDIR}")
    message(FATAL_ERROR "The last installation was made with DESTDIR=${stage}; "
      "remove it with the same, or install again first.")
  endif()
endif()

set(installed "")
if(EXISTS "${MANIFEST}")
  file(STRINGS "${MANIFEST}" installed)
endif()

set(removed 0)
set(folders "")
foreach(entry IN LISTS installed)
  set(file "$ENV{DESTDIR}${entry}")
  cmake_path(GET file PARENT_PATH folder)
  list(APPEND folders "${folder}")
  if(EXISTS "${file}" OR IS_SYMLINK "${file}")
    execute_process(COMMAND rm -f -- "${file}" COMMAND_ERROR_IS_FATAL ANY)
    message("removed ${file}")
    math(EXPR removed "${removed} + 1")
  endif()
endforeach()

list(REMOVE_DUPLICATES folders)
foreach(folder IN LISTS folders)
  remove_own_folder("${folder}")
endforeach()
if(removed EQUAL 0)
  message("nothing to remove")
endif()
