# Debian packages, one a component. What only an OpenWrt router has a use for, the plugin of its RPC
# daemon, is in packaging/openwrt/.
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL library development platform tools web)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_CONTACT "zeltoapi maintainers <zeltoapi@localhost>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# zelto_package(COMPONENT NAME SECTION DEPENDS SUMMARY): a component's package.
function(zelto_package component name section depends summary)
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_COMPONENT_${key}_DESCRIPTION "${summary}" PARENT_SCOPE)
endfunction()

set(library libzeltoapi${PROJECT_VERSION_MAJOR})
set(same_version "(= ${PROJECT_VERSION})")
# A firmware's package of its own platform libraries provides the virtual package.
zelto_package(library ${library} libs "zelto-platform-linux | zelto-platform"
  "commands behind a home router's web interface")
zelto_package(development libzeltoapi-dev libdevel
  "${library} ${same_version}, zelto-platform-linux ${same_version}"
  "headers and build files of libzeltoapi")
zelto_package(platform zelto-platform-linux libs ""
  "platform libraries of libzeltoapi for an ordinary Linux")
zelto_package(tools zelto utils "${library} ${same_version}"
  "libzeltoapi on the command line")
zelto_package(web zelto-web httpd "${library} ${same_version}"
  "gateway and web page of a home router")
set(CPACK_DEBIAN_PLATFORM_PACKAGE_PROVIDES zelto-platform)
# What Debian's own packages of libraries ask for after they are unpacked.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/triggers)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_PLATFORM_PACKAGE_CONTROL_EXTRA ${CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA})

include(CPack)
