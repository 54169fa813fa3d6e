zelto_test(access_test
  access/terminals_test.cpp access/parental_test.cpp access/parental_rules_test.cpp
  access/blacklist_test.cpp access/aliases_test.cpp access/qos_test.cpp
  access/port_forwarding_test.cpp access/list_files_test.cpp)
