zelto_test(services_test services/services_test.cpp)
