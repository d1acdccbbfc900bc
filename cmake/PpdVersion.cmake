# The versions of the PPDs. The first two numbers are the build's: a release whose filters
# need other PPDs raises them. The third counts the PPDs' own changes (see ppd/versions).
# Who compiles the description by hand gets them too, so they stand there.
set(VELKA_PPD_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
file(STRINGS ppd/velka.drv version_line REGEX "^Version ")
if(NOT version_line MATCHES "^Version (${VELKA_PPD_VERSION}\\.[0-9]+)$")
  message(FATAL_ERROR "ppd/velka.drv says \"${version_line}\", the build is ${VELKA_PPD_VERSION}")
endif()
set(VELKA_PPD_FILE_VERSION ${CMAKE_MATCH_1})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ppd/velka.drv)
