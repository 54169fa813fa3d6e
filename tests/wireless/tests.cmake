zelto_test(wireless_test
  wireless/wireless_test.cpp wireless/envelope_test.cpp wireless/combined_test.cpp
  wireless/main_network_test.cpp wireless/channels_test.cpp wireless/guest_test.cpp
  wireless/power_test.cpp wireless/schedule_test.cpp)
