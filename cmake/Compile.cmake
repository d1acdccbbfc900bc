# Flags every target of this project is built with, and the helper that makes
# one static library out of a folder.

add_library(velka_options INTERFACE)
# Tone and position arithmetic must give the same bits everywhere, so the
# compiler may not fuse a multiply and an add. Warnings are errors where
# CMAKE_COMPILE_WARNING_AS_ERROR is on, as ./dev has it: who only builds this may have a
# compiler that warns of more.
target_compile_options(velka_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Wnon-virtual-dtor -ffp-contract=off)
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -g1 -DNDEBUG")

if(VELKA_SANITIZE)
  target_compile_options(velka_options INTERFACE
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:VELKA_ONE_THREAD>>>:-fsanitize=${VELKA_SANITIZE}>
    -fno-sanitize-recover=all -fno-omit-frame-pointer)
  if(VELKA_FUZZ)
    target_compile_options(velka_options INTERFACE
      -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/library.ignore)
  endif()
  target_link_options(velka_options INTERFACE -fsanitize=${VELKA_SANITIZE})
elseif(VELKA_COVERAGE)
  target_compile_options(velka_options INTERFACE --coverage)
  add_library(velka_coverage STATIC ${CMAKE_CURRENT_LIST_DIR}/CoverageAtExit.cpp)
  target_link_options(velka_options INTERFACE --coverage -Wl,--wrap=_exit,--wrap=raise,--undefined=__wrap__exit)
  target_link_libraries(velka_options INTERFACE velka_coverage)
else()
  target_compile_options(velka_options INTERFACE -fstack-protector-strong)
  target_link_options(velka_options INTERFACE -Wl,-z,relro,-z,now)
  if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(velka_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  endif()
endif()

include(CheckPIESupported)
check_pie_supported()

# Rooms whose code runs on the one thread of a page and touches nothing but that page. The
# thread sanitizer has nothing to find there and would take most of its time with them.
set(velka_rooms_of_one_thread imaging separation commands escp orlo exact)

# velka_library(NAME SOURCES... [LINKS...]): libvelka_NAME.a; its headers are
# found by whoever links it.
function(velka_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(velka_${name} STATIC ${ARG_SOURCES})
  target_include_directories(velka_${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(velka_${name} PUBLIC ${ARG_LINKS} PRIVATE velka_options)
  if(VELKA_SANITIZE STREQUAL "thread" AND name IN_LIST velka_rooms_of_one_thread)
    set_target_properties(velka_${name} PROPERTIES VELKA_ONE_THREAD ON)
  endif()
endfunction()

# velka_simd(NAME FLAG SOURCES...): faster siblings of a library's kernels, each with the
# instructions of its suffix, which FLAG turns on. They include nothing of ours that has
# code of its own, which would otherwise be compiled twice, once for processors that
# lack them.
function(velka_simd name flag)
  if(VELKA_SIMD AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
    target_sources(velka_${name} PRIVATE ${ARGN})
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS ${flag})
    target_compile_definitions(velka_${name} PRIVATE VELKA_SIMD)
  endif()
endfunction()
