# What `cmake --install` puts where, and the target `uninstall`.
#
# The filters and the printer descriptions go to the folders of CUPS that is on
# this machine. They are written relative to the prefix, so that packages and
# tests may install elsewhere; without a prefix of the user's own the prefix is
# the one that CUPS lives in.

include(GNUInstallDirs)

# cups_folder(NAME PKG-CONFIG-VARIABLE CUPS-CONFIG-OPTION FALLBACK)
function(cups_folder name variable option fallback)
  set(folder "")
  if(CUPS_FOUND)
    pkg_get_variable(folder cups ${variable})
  endif()
  find_program(CUPS_CONFIG cups-config)
  if(NOT folder AND CUPS_CONFIG)
    execute_process(COMMAND ${CUPS_CONFIG} ${option}
      OUTPUT_VARIABLE folder OUTPUT_STRIP_TRAILING_WHITESPACE)
  endif()
  if(NOT folder)
    set(folder ${fallback})
  endif()
  set(${name} ${folder} PARENT_SCOPE)
endfunction()

cups_folder(cups_serverbin cups_serverbin --serverbin /usr/lib/cups)
cups_folder(cups_datadir cups_datadir --datadir /usr/share/cups)
cups_folder(cups_serverroot cups_serverroot --serverroot /etc/cups)

# The deepest folder that both lie in.
set(cups_prefix ${cups_serverbin})
cmake_path(IS_PREFIX cups_prefix ${cups_datadir} NORMALIZE holds_both)
while(NOT holds_both)
  cmake_path(GET cups_prefix PARENT_PATH cups_prefix)
  cmake_path(IS_PREFIX cups_prefix ${cups_datadir} NORMALIZE holds_both)
endwhile()
cmake_path(RELATIVE_PATH cups_serverbin BASE_DIRECTORY ${cups_prefix} OUTPUT_VARIABLE serverbin)
cmake_path(RELATIVE_PATH cups_datadir BASE_DIRECTORY ${cups_prefix} OUTPUT_VARIABLE datadir)

set(VELKA_CUPS_SERVERBIN ${serverbin} CACHE STRING
  "Folder of CUPS's programs, relative to the install prefix or absolute")
set(VELKA_CUPS_DATADIR ${datadir} CACHE STRING
  "Folder of CUPS's data, relative to the install prefix or absolute")
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set(CMAKE_INSTALL_PREFIX ${cups_prefix} CACHE PATH "Install prefix" FORCE)
endif()

# Modes do not depend on the umask: CUPS refuses filters that others may write, and
# runs them as a user who must get at them.
set(program_modes OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
  WORLD_READ WORLD_EXECUTE)
set(data_modes OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

set(filter_folder ${VELKA_CUPS_SERVERBIN}/filter)
set(model_folder ${VELKA_CUPS_DATADIR}/model/velka)
set(own_folder ${CMAKE_INSTALL_DATADIR}/velka)
set(doc_folder ${CMAKE_INSTALL_DOCDIR})
set(man_folder ${CMAKE_INSTALL_MANDIR})
set(metainfo_folder ${CMAKE_INSTALL_DATADIR}/metainfo)
file(GLOB documents CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/docs/*.md ${PROJECT_SOURCE_DIR}/docs/*.png)
file(GLOB command_pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.1)
file(GLOB filter_pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.8)

set(folders ${filter_folder} ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_SBINDIR} ${own_folder}
  ${doc_folder}/docs ${man_folder}/man1 ${man_folder}/man8 ${metainfo_folder})
if(VELKA_BUILD_PPDS)
  list(APPEND folders ${model_folder})
endif()
set(unit_folder lib/systemd/system)
if(VELKA_HAS_PRINTERAPP)
  list(APPEND folders ${unit_folder})
else()
  list(FILTER filter_pages EXCLUDE REGEX "velka-printer-app")
endif()
# Before any file: folders that are missing would get the modes of the umask.
install(CODE "set(folders \"${folders}\")
set(build_folder \"${PROJECT_BINARY_DIR}\")
set(filters \"${filter_folder}\")
set(cups_filters \"${cups_serverbin}/filter\")
set(cups_serverroot \"${cups_serverroot}\")
set(ppd_version \"${VELKA_PPD_FILE_VERSION}\")")
install(SCRIPT cmake/BeforeInstall.cmake)

# install_data(FOLDER FILE...)
function(install_data folder)
  install(FILES ${ARGN} DESTINATION ${folder} PERMISSIONS ${data_modes})
endfunction()

install(TARGETS rastovelka velkapdfcopy velkaguard RUNTIME DESTINATION ${filter_folder}
  PERMISSIONS ${program_modes})
install(TARGETS velkaview RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  PERMISSIONS ${program_modes})

if(VELKA_HAS_PRINTERAPP)
  install(TARGETS velka-printer-app RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    PERMISSIONS ${program_modes})
  set(app_folder ${CMAKE_INSTALL_FULL_BINDIR})
  configure_file(${PROJECT_SOURCE_DIR}/packaging/velka-printer-app.service.in
    ${PROJECT_BINARY_DIR}/packaging/velka-printer-app.service @ONLY)
  install_data(${unit_folder} ${PROJECT_BINARY_DIR}/packaging/velka-printer-app.service)
endif()

# Not the .drv that they are compiled from: CUPS would list each model once more.
if(VELKA_BUILD_PPDS)
  install_data(${model_folder}
    ${PROJECT_BINARY_DIR}/ppd/velka-standard.ppd ${PROJECT_BINARY_DIR}/ppd/velka-orlo.ppd)
endif()
install(PROGRAMS ${PROJECT_SOURCE_DIR}/ppd/new-names ${PROJECT_SOURCE_DIR}/ppd/update-queues
  DESTINATION ${own_folder} PERMISSIONS ${program_modes})
install_data(${doc_folder} ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/NEWS.md
  ${PROJECT_SOURCE_DIR}/SECURITY.md)
install_data(${doc_folder}/docs ${documents})
configure_file(${PROJECT_SOURCE_DIR}/doctor/velka-doctor.in ${PROJECT_BINARY_DIR}/doctor/velka-doctor
  @ONLY FILE_PERMISSIONS ${program_modes})
install(PROGRAMS ${PROJECT_BINARY_DIR}/doctor/velka-doctor DESTINATION ${CMAKE_INSTALL_SBINDIR}
  PERMISSIONS ${program_modes})

install_data(${man_folder}/man1 ${command_pages})
install_data(${man_folder}/man8 ${filter_pages})
install_data(${metainfo_folder} ${PROJECT_SOURCE_DIR}/packaging/velka.metainfo.xml)
install(SCRIPT cmake/AfterInstall.cmake)

add_custom_target(uninstall
  COMMAND ${CMAKE_COMMAND} -DMANIFEST=${PROJECT_BINARY_DIR}/install_manifest.txt
    -P ${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake
  COMMENT "Removing what was installed"
  VERBATIM)
