# httplib: the library that velora-ts serve answers requests with. Debian's is a shared library, whose pkg-config file
# says which parts it was built with; on Windows it is a header alone.
add_library(httplib INTERFACE)
if(WIN32)
  find_path(HTTPLIB_INCLUDE_DIR httplib.h REQUIRED)
  target_include_directories(httplib SYSTEM INTERFACE ${HTTPLIB_INCLUDE_DIR})
  target_link_libraries(httplib INTERFACE ws2_32)
else()
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(cpp_httplib REQUIRED IMPORTED_TARGET GLOBAL cpp-httplib)
  target_link_libraries(httplib INTERFACE PkgConfig::cpp_httplib)
endif()
