# Faults are put into the registers of this machine. ThreadSanitizer has a thread of its own, whose
# calls would count, and nothing to find in a process with one.
if(CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64 AND NOT ZELTO_SANITIZE STREQUAL thread)
  set(gateway ${PROJECT_SOURCE_DIR}/gateway)
  zelto_test(power_cut_test reliability/power_cut_test.cpp reliability/traced.cpp
             ${gateway}/sessions.cpp ${gateway}/state.cpp ${gateway}/token.cpp
             ${gateway}/token_file.cpp)
  target_link_libraries(power_cut_test PRIVATE platform_files)
endif()
