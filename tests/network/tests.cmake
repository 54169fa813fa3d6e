zelto_test(network_test network/uplink_test.cpp network/wan_test.cpp network/lan_test.cpp)
zelto_test(quick_setup_test network/quick_setup_test.cpp network/survey_test.cpp)
zelto_test(internet_test
           network/tunnels_test.cpp network/internet_settings_test.cpp network/diagnosis_test.cpp)
