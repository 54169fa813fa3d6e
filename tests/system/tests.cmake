zelto_test(system_test system/login_test.cpp system/status_test.cpp system/firmware_test.cpp
           system/maintenance_test.cpp)
