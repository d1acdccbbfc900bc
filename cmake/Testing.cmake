# Every test runs with a /tmp of its own, so that they can run side by side and leave
# nothing behind.

set(own_tmp ${PROJECT_SOURCE_DIR}/tools/own-tmp.sh ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR} --)

# Assertions expand to much code; optimising it takes longer than running it, the more so
# where sanitizers have doubled it, and describing it for a debugger a third as long again.
# Line numbers are enough for their reports.
# velka_test_code(TARGET): the target's own sources are such.
function(velka_test_code target)
  set(optimisation -O1)
  if(VELKA_SANITIZE)
    set(optimisation -Og)
  endif()
  target_compile_options(${target} PRIVATE ${optimisation} -g1)
endfunction()

# Seconds after which a test counts as hanging. Far beyond what any takes: how fast a machine
# is, and what else it does meanwhile, is no matter of a test's.
set(longest 1200)

# velka_script_test(NAME COST COMMAND...): 77 is the status of a test that says why it
# was skipped. Those that cost most start first, also where no earlier run tells CTest
# so: the many short ones then fill both processors to the end.
function(velka_script_test name cost)
  add_test(NAME ${name} COMMAND ${own_tmp} ${ARGN})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${longest} COST ${cost} SKIP_RETURN_CODE 77)
endfunction()

# velka_program_test(TARGET): the cases of a GoogleTest program, one by one.
function(velka_program_test target)
  if(CMAKE_VERSION VERSION_LESS 3.29)
    set(launcher CROSSCOMPILING_EMULATOR)
  else()
    set(launcher TEST_LAUNCHER)
  endif()
  set_target_properties(${target} PROPERTIES ${launcher} "${own_tmp}")
  gtest_discover_tests(${target} PROPERTIES TIMEOUT ${longest} DISCOVERY_TIMEOUT ${longest})
endfunction()
