zelto_test(frame_test api/frame_test.cpp)
zelto_test(utilities_test api/utilities_test.cpp)
zelto_test(fields_test api/fields_test.cpp)
zelto_test(threads_test api/threads_test.cpp)
zelto_test(examples_test api/examples_test.cpp)
target_compile_definitions(examples_test PRIVATE
  ZELTO_HEADERS="${PROJECT_SOURCE_DIR}/include/zelto")
target_link_libraries(examples_test PRIVATE ${CMAKE_DL_LIBS})
