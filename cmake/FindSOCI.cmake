# Finds SOCI, which Debian ships without a CMake package; on Windows its libraries have a version in their names.
# Components are back ends: sqlite3, postgresql. Each gives a target SOCI::<component>, which needs the library of its
# database (call find_package for SQLite3 or PostgreSQL too); the core is SOCI::core.

find_path(SOCI_INCLUDE_DIR soci/soci.h)
find_library(SOCI_core_LIBRARY NAMES soci_core soci_core_4_0)
set(_soci_needed SOCI_INCLUDE_DIR SOCI_core_LIBRARY)
foreach(_component IN LISTS SOCI_FIND_COMPONENTS)
  find_library(SOCI_${_component}_LIBRARY NAMES soci_${_component} soci_${_component}_4_0)
  list(APPEND _soci_needed SOCI_${_component}_LIBRARY)
endforeach()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(SOCI REQUIRED_VARS ${_soci_needed})

set(_soci_sqlite3_client SQLite::SQLite3)
set(_soci_postgresql_client PostgreSQL::PostgreSQL)

if(SOCI_FOUND)
  if(NOT TARGET SOCI::core)
    add_library(SOCI::core UNKNOWN IMPORTED)
    set_target_properties(SOCI::core PROPERTIES
      IMPORTED_LOCATION ${SOCI_core_LIBRARY}
      INTERFACE_INCLUDE_DIRECTORIES ${SOCI_INCLUDE_DIR})
  endif()
  foreach(_component IN LISTS SOCI_FIND_COMPONENTS)
    if(NOT TARGET SOCI::${_component})
      add_library(SOCI::${_component} UNKNOWN IMPORTED)
      set_target_properties(SOCI::${_component} PROPERTIES
        IMPORTED_LOCATION ${SOCI_${_component}_LIBRARY}
        INTERFACE_LINK_LIBRARIES "SOCI::core;${_soci_${_component}_client}")
    endif()
  endforeach()
endif()
mark_as_advanced(SOCI_INCLUDE_DIR SOCI_core_LIBRARY)
