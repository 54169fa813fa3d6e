# What 32-bit machines and MIPS have different.
zelto_test(machine_test mips/machine_test.cpp)
target_include_directories(machine_test PRIVATE ${PROJECT_SOURCE_DIR}/src)
if(NOT CMAKE_CROSSCOMPILING)
  return()
endif()

# zelto_variant(NAME FOLDER SOURCE): the library with other files in the place of some of its own.
function(zelto_variant name folder source objects)
  add_library(${name} SHARED ${source} ${objects})
  set_target_properties(${name} PROPERTIES
    OUTPUT_NAME zeltoapi
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${folder}
    INTERPROCEDURAL_OPTIMIZATION_MINSIZEREL ON
    LINK_OPTIONS "$<TARGET_PROPERTY:zeltoapi,LINK_OPTIONS>")
  target_compile_options(${name} PRIVATE -Os)
  target_include_directories(${name} PRIVATE
    ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${name} PRIVATE PkgConfig::CJSON easyuci wificonf uartat)
endfunction()

# For programs under qemu-user, with another way to start detached commands; tests/mips/emulate puts
# it into the library's place.
set(objects $<TARGET_OBJECTS:zeltoapi>)
zelto_variant(zeltoapi_emulated emulated mips/detached.cpp
              $<FILTER:${objects},EXCLUDE,/detached\\.cpp>)

# As ZELTO_STATIC_CXX makes it, to be weighed.
zelto_variant(zeltoapi_static_cxx static-cxx ${PROJECT_SOURCE_DIR}/src/api/terminate.cpp ${objects})
target_link_options(zeltoapi_static_cxx PRIVATE
  -static-libstdc++ -static-libgcc LINKER:--exclude-libs,ALL)
add_test(NAME abi_exports_static_cxx COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/abi/check_exports
  $<TARGET_FILE:zeltoapi_static_cxx> ${PROJECT_SOURCE_DIR} ${CMAKE_C_COMPILER})
