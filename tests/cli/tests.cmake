# With the command line among the router's programs; asks the library through it only.
add_executable(zelto_test cli/zelto_test.cpp)
target_compile_definitions(zelto_test PRIVATE
  ZELTO_PROGRAM="$<TARGET_FILE:zelto>" ZELTO_VERSION="${PROJECT_VERSION}")
target_link_libraries(zelto_test PRIVATE board GTest::gmock)
add_dependencies(zelto_test zelto)
add_test(NAME zelto_test COMMAND zelto_test)

add_test(NAME completion_test COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/cli/completion_test.sh
  ${PROJECT_SOURCE_DIR}/packaging/bash-completion/zelto)
