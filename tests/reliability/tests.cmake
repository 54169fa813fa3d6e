# Faults are put into the registers of this machine. Thousands of forks take too long with the memory
# of AddressSanitizer; ThreadSanitizer's own thread would make calls that count.
if(CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64 AND ZELTO_SANITIZE STREQUAL "")
  set(gateway ${PROJECT_SOURCE_DIR}/gateway)
  zelto_test(power_cut_test reliability/power_cut_test.cpp reliability/traced.cpp
             ${gateway}/sessions.cpp ${gateway}/state.cpp ${gateway}/token.cpp
             ${gateway}/token_file.cpp)
  target_link_libraries(power_cut_test PRIVATE platform_files)
endif()
