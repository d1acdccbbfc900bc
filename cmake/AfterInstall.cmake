# Run last of an installation: a prefix where CUPS does not look is most likely not
# what was meant. A staged installation (DESTDIR) is somebody's package.
cmake_path(ABSOLUTE_PATH filters BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
cmake_path(NORMAL_PATH cups_filters)
if("$ENV{DESTDIR}" STREQUAL "" AND NOT filters STREQUAL cups_filters)
  message(STATUS "Note: the filters are in ${filters}, but CUPS looks for them in ${cups_filters}.")
endif()

# Queues keep the PPD that they were made with. velkapdfcopy tells of one of another
# version, but only where that has it started at all. Other users than root cannot read
# them, and are told nothing.
set(server_root "${cups_serverroot}")
if(NOT "$ENV{CUPS_SERVERROOT}" STREQUAL "")
  set(server_root "$ENV{CUPS_SERVERROOT}")
endif()
set(queue_ppds "")
if("$ENV{DESTDIR}" STREQUAL "")
  file(GLOB queue_ppds "${server_root}/ppd/*.ppd")
endif()
string(REPLACE "." "\\." version_pattern "${ppd_version}")
foreach(ppd IN LISTS queue_ppds)
  execute_process(COMMAND grep -E "^\\*(cupsFilter2?:.* rastovelka\"|cupsModelNumber: 2$|FileVersion: \"${version_pattern}\")" "${ppd}"
    OUTPUT_VARIABLE lines ERROR_QUIET)
  if(lines MATCHES "rastovelka" AND NOT lines MATCHES "FileVersion")
    cmake_path(GET ppd STEM LAST_ONLY queue)
    set(model standard)
    if(lines MATCHES "cupsModelNumber")
      set(model orlo)
    endif()
    message(STATUS "Note: queue ${queue} has the PPD of another version, repair: "
      "lpadmin -p '${queue}' -m velka/velka-${model}.ppd")
  endif()
endforeach()

# The list of files, which is written next, does not say where it was staged.
file(WRITE "${build_folder}/install_destdir.txt" "$ENV{DESTDIR}")
