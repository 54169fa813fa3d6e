# A C project that uses the installed library; check_install copies it beside program.c.
cmake_minimum_required(VERSION 3.25)
project(consumer LANGUAGES C)
find_package(zeltoapi 0.1 REQUIRED)
add_executable(program program.c)
target_link_libraries(program PRIVATE zeltoapi::zeltoapi)
