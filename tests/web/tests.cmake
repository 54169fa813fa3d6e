add_test(NAME web_check COMMAND ${CMAKE_CURRENT_LIST_DIR}/check_web.mjs ${PROJECT_SOURCE_DIR}/web)

# The whole stack in a browser; what is compiled has its tests under sanitizers elsewhere.
if(NOT ZELTO_SANITIZE)
  add_test(NAME web_test COMMAND ${CMAKE_CURRENT_LIST_DIR}/run
    $<TARGET_FILE_DIR:zelto_board> ${CMAKE_CURRENT_BINARY_DIR}/web)
  set_tests_properties(web_test PROPERTIES TIMEOUT 400)
endif()
