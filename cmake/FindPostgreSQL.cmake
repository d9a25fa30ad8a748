# Finds PostgreSQL's client library as CMake does, and on Windows, where it is linked in, what that stands on.
include(${CMAKE_ROOT}/Modules/FindPostgreSQL.cmake)
if(WIN32 AND PostgreSQL_FOUND)
  set_target_properties(PostgreSQL::PostgreSQL PROPERTIES INTERFACE_LINK_LIBRARIES "secur32;ws2_32")
endif()
