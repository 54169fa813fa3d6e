# zelto_test(easyuci_test platform/easyuci_test.cpp) and its like, one line a program
zelto_test(easyuci_test platform/easyuci_test.cpp)
