# Where velkaview finds the filter that is installed together with it: the way from
# the folder of commands to that of filters, so that the whole may be moved.
set(commands ${CMAKE_INSTALL_BINDIR})
set(filters ${VELKA_CUPS_SERVERBIN}/filter)
if(IS_ABSOLUTE "${filters}")
  set(VELKA_FILTERS_FROM_BIN ${filters})
elseif(IS_ABSOLUTE "${commands}")
  set(VELKA_FILTERS_FROM_BIN ${CMAKE_INSTALL_PREFIX}/${filters})
else()
  file(RELATIVE_PATH VELKA_FILTERS_FROM_BIN "/prefix/${commands}" "/prefix/${filters}")
endif()
target_compile_definitions(velka_view PRIVATE VELKA_FILTERS_FROM_BIN="${VELKA_FILTERS_FROM_BIN}")
if(VELKA_HAS_PRINTERAPP)
  target_compile_definitions(velka_appjobs PRIVATE
    VELKA_FILTERS_FROM_BIN="${VELKA_FILTERS_FROM_BIN}" VELKA_SYSTEM_FILTERS="${cups_serverbin}/filter")
endif()
