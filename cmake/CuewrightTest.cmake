# cuewright_add_test(NAME name LABEL label LIBS libs... SOURCES files...)
# One GoogleTest executable whose cases CTest lists one by one under a label.
function(cuewright_add_test)
  cmake_parse_arguments(T "" "NAME;LABEL" "LIBS;SOURCES" ${ARGN})
  if(NOT T_SOURCES)
    return()
  endif()
  add_executable(${T_NAME} ${T_SOURCES})
  target_link_libraries(${T_NAME} PRIVATE ${T_LIBS} GTest::gtest GTest::gtest_main GTest::gmock)
  target_include_directories(${T_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${T_NAME} PRIVATE
    CUEWRIGHT_TEST_DATA_DIR="${PROJECT_SOURCE_DIR}/tests/data"
    CUEWRIGHT_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  gtest_discover_tests(${T_NAME}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS ${T_LABEL} ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
