# The operator's lookup is not exported.
zelto_test(apnlist_test mobile/apnlist_test.cpp
           ${PROJECT_SOURCE_DIR}/src/mobile/apn_lookup.cpp ${PROJECT_SOURCE_DIR}/src/api/text.cpp)
target_include_directories(apnlist_test PRIVATE ${PROJECT_SOURCE_DIR}/src)

# Nor is what the modem's answers mean.
zelto_test(mobile_test mobile/modem_test.cpp mobile/settings_test.cpp
           ${PROJECT_SOURCE_DIR}/src/mobile/answers.cpp ${PROJECT_SOURCE_DIR}/src/api/text.cpp)
target_include_directories(mobile_test PRIVATE ${PROJECT_SOURCE_DIR}/src)
