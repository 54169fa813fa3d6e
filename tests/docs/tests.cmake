# The examples of the public headers on the virtual router, against headers and docs/.
add_executable(run_examples docs/run_examples.cpp)
target_link_libraries(run_examples PRIVATE test_support ${CMAKE_DL_LIBS})
add_test(NAME docs_examples
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/docs/check_examples $<TARGET_FILE:run_examples>)
set_tests_properties(docs_examples PROPERTIES TIMEOUT 300)
