# Run first of an installation: makes those of `folders` that are missing, with modes
# that do not depend on the umask.
if("$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}" MATCHES "[][;]")
  message(FATAL_ERROR "CMake's lists cannot hold names with semicolons or brackets: "
    "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}")
endif()
set(missing "")
foreach(folder IN LISTS folders)
  cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}")
  list(APPEND missing "$ENV{DESTDIR}${folder}")
endforeach()
execute_process(COMMAND sh -c "umask 022 && mkdir -p -- \"$@\"" sh ${missing}
  COMMAND_ERROR_IS_FATAL ANY)
