# A short run of the fuzzer, where clang is. In a build of its own, for it takes that compiler.
find_program(CLANGXX clang++)
if(CLANGXX AND NOT CMAKE_CROSSCOMPILING AND ZELTO_SANITIZE STREQUAL "")
  set(build ${CMAKE_CURRENT_BINARY_DIR}/fuzz)
  add_test(NAME fuzz_build COMMAND ${PROJECT_SOURCE_DIR}/script/fuzz --build ${build})
  add_test(NAME fuzz_smoke COMMAND ${PROJECT_SOURCE_DIR}/script/fuzz --smoke ${build})
  set_tests_properties(fuzz_build PROPERTIES TIMEOUT 900 FIXTURES_SETUP fuzz)
  set_tests_properties(fuzz_smoke PROPERTIES TIMEOUT 300 FIXTURES_REQUIRED fuzz)
endif()
