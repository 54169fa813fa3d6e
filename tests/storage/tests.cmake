zelto_test(storage_test storage/accounts_test.cpp storage/disks_test.cpp)
