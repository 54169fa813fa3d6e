# The public headers as C11, each first in a file of its own, and the layout of exported data.
file(GLOB public_headers RELATIVE ${PROJECT_SOURCE_DIR}/include CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/include/zelto/*.h ${PROJECT_SOURCE_DIR}/include/platform/*.h)
add_library(public_headers_c OBJECT abi/layout.c abi/program.c)
foreach(header IN LISTS public_headers)
  string(MAKE_C_IDENTIFIER ${header} name)
  configure_file(abi/header.c.in abi/${name}.c @ONLY)
  target_sources(public_headers_c PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/abi/${name}.c)
endforeach()
target_include_directories(public_headers_c PRIVATE ${PROJECT_SOURCE_DIR}/include)
target_compile_options(public_headers_c PRIVATE -Wpedantic)
set_target_properties(public_headers_c PROPERTIES C_EXTENSIONS OFF C_STANDARD_REQUIRED ON)

set(abi_flags)
if(ZELTO_SANITIZE STREQUAL "address")
  set(abi_flags -fsanitize=address,undefined)
elseif(ZELTO_SANITIZE STREQUAL "thread")
  set(abi_flags -fsanitize=thread)
endif()
# What is installed does not depend on the machine, so this one tries it.
if(NOT CMAKE_CROSSCOMPILING)
  add_test(NAME abi_install COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/abi/check_install
    ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_BINARY_DIR}/abi/install ${CMAKE_C_COMPILER} ${abi_flags})
endif()
# A sanitizer adds exports, libraries and size of its own.
if(ZELTO_SANITIZE STREQUAL "")
  add_test(NAME abi_exports COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/abi/check_exports
    $<TARGET_FILE:zeltoapi> ${PROJECT_SOURCE_DIR} ${CMAKE_C_COMPILER})
endif()
