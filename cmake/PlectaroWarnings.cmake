# Warnings for our own targets only; third-party headers come in as system includes.
function(plectaro_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wno-unused-parameter)
endfunction()

# plectaro_test(NAME sources... LIBS libs...): one GoogleTest program, registered with ctest.
function(plectaro_test name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} GTest::gtest GTest::gtest_main GTest::gmock)
  target_compile_definitions(${name} PRIVATE
    PLECTARO_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    PLECTARO_BINARY_DIR="${PROJECT_BINARY_DIR}")
  plectaro_warnings(${name})
  gtest_discover_tests(${name}
    # One variable only: a list here would be split into separate property arguments.
    # scripts/test.sh sets ASAN_OPTIONS for the whole run.
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen"
    DISCOVERY_TIMEOUT 60)
endfunction()
