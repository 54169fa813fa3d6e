add_test(NAME web_check COMMAND ${CMAKE_CURRENT_LIST_DIR}/check_web.mjs ${PROJECT_SOURCE_DIR}/web)
