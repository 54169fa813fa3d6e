zelto_test(frame_test api/frame_test.cpp)
zelto_test(utilities_test api/utilities_test.cpp)
zelto_test(fields_test api/fields_test.cpp)
zelto_test(threads_test api/threads_test.cpp)
