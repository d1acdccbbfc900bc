# Newer CUPS is found through pkg-config only, Debian 12's through cups-config
# only; both end in the target velka_cups.

add_library(velka_cups INTERFACE)
# The PPD interface is deprecated as a whole; it is what CUPS 2 filters have.
target_compile_options(velka_cups INTERFACE -Wno-deprecated-declarations)

find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
  pkg_check_modules(CUPS QUIET IMPORTED_TARGET cups)
endif()
if(CUPS_FOUND)
  target_link_libraries(velka_cups INTERFACE PkgConfig::CUPS)
  find_library(CUPSIMAGE_LIBRARY cupsimage)
  if(CUPSIMAGE_LIBRARY)
    target_link_libraries(velka_cups INTERFACE ${CUPSIMAGE_LIBRARY})
  endif()
else()
  find_program(CUPS_CONFIG cups-config)
  if(NOT CUPS_CONFIG)
    message(FATAL_ERROR "CUPS not found: install libcups2-dev and libcupsimage2-dev")
  endif()
  execute_process(COMMAND ${CUPS_CONFIG} --cflags
    OUTPUT_VARIABLE cups_cflags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${CUPS_CONFIG} --image --libs
    OUTPUT_VARIABLE cups_libs OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(cups_cflags)
  separate_arguments(cups_libs)
  target_compile_options(velka_cups INTERFACE ${cups_cflags})
  target_link_libraries(velka_cups INTERFACE ${cups_libs})
endif()
