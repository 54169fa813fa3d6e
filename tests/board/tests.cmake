zelto_test(board_test board/board_test.cpp)
