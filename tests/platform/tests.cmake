# zelto_test(easyuci_test platform/easyuci_test.cpp) and its like, one line a program
zelto_test(wificonf_test platform/wificonf_test.cpp)
zelto_test(uart_at_test platform/uart_at_test.cpp ${PROJECT_SOURCE_DIR}/platform/uart/answer.cpp)
zelto_test(easyuci_test platform/easyuci_test.cpp platform/easyuci_durability_test.cpp)
