# Run last of an installation: a prefix where CUPS does not look is most likely not
# what was meant. A staged installation (DESTDIR) is somebody's package.
cmake_path(ABSOLUTE_PATH filters BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
cmake_path(NORMAL_PATH cups_filters)
if("$ENV{DESTDIR}" STREQUAL "" AND NOT filters STREQUAL cups_filters)
  message(STATUS "Note: the filters are in ${filters}, but CUPS looks for them in ${cups_filters}.")
endif()
# The list of files, which is written next, does not say where it was staged.
file(WRITE "${build_folder}/install_destdir.txt" "$ENV{DESTDIR}")
