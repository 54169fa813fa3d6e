zelto_test(network_test network/uplink_test.cpp network/wan_test.cpp network/lan_test.cpp)
