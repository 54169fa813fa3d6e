# What 32-bit machines and MIPS have different.
zelto_test(machine_test mips/machine_test.cpp)
target_include_directories(machine_test PRIVATE ${PROJECT_SOURCE_DIR}/src)

# The library for programs under qemu-user, with another way to start detached commands; tests/mips/
# emulate puts it into the other one's place.
if(CMAKE_CROSSCOMPILING)
  add_library(zeltoapi_emulated SHARED
    mips/detached.cpp $<FILTER:$<TARGET_OBJECTS:zeltoapi>,EXCLUDE,/detached\\.cpp>)
  set_target_properties(zeltoapi_emulated PROPERTIES
    OUTPUT_NAME zeltoapi
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/emulated
    LINK_OPTIONS "$<TARGET_PROPERTY:zeltoapi,LINK_OPTIONS>")
  target_include_directories(zeltoapi_emulated PRIVATE
    ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(zeltoapi_emulated PRIVATE PkgConfig::CJSON easyuci wificonf uartat)
endif()
