zelto_test(board_test board/board_test.cpp)

# Not on a router: what those who boot one see.
add_executable(run_test board/run_test.cpp)
target_link_libraries(run_test PRIVATE board GTest::gmock_main)
add_test(NAME run_test COMMAND run_test)
add_test(NAME launcher_test
         COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/board/launcher_test.sh $<TARGET_FILE_DIR:zelto_board>)
set_tests_properties(run_test launcher_test PROPERTIES TIMEOUT 120)
