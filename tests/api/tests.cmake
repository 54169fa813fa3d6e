zelto_test(frame_test api/frame_test.cpp)
zelto_test(utilities_test api/utilities_test.cpp)
zelto_test(fields_test api/fields_test.cpp)
zelto_test(threads_test api/threads_test.cpp reliability/many_at_once_test.cpp)

# Reads replies as a browser does, and takes the commands' members from the catalogue.
zelto_test(hostile_test api/hostile_test.cpp ${PROJECT_SOURCE_DIR}/src/api/text.cpp)
target_include_directories(hostile_test PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(hostile_test PRIVATE EXAMPLES="${PROJECT_SOURCE_DIR}/docs/examples.json")
target_link_libraries(hostile_test PRIVATE zelto_catalogue PkgConfig::CJSON)
