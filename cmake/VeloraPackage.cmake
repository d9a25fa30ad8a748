# The CMake package and the pkg-config files for other projects, and the target "uninstall".
include(CMakePackageConfigHelpers)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/VeloraTsLogging)
configure_file(cmake/VeloraTsLoggingConfig.cmake.in VeloraTsLoggingConfig.cmake @ONLY)
write_basic_package_version_file(VeloraTsLoggingConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(EXPORT VeloraTsLogging NAMESPACE Velora:: FILE VeloraTsLoggingTargets.cmake DESTINATION ${package})
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/VeloraTsLoggingConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/VeloraTsLoggingConfigVersion.cmake
  DESTINATION ${package})

# The paths are relative to the file. A vendor's TSAL is expected in its own folder; pkg-config can be given another
# tsal_prefix.
file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" pc_prefix "\${pcfiledir}/${pc_prefix}")
set(tsal_prefix "\${prefix}")
set(tsal_libdir ${CMAKE_INSTALL_LIBDIR})
set(tsal_includedir ${CMAKE_INSTALL_INCLUDEDIR})
if(VELORA_TSAL_ROOT)
  set(tsal_prefix ${VELORA_TSAL_ROOT})
  set(tsal_libdir lib)
  set(tsal_includedir include)
endif()
foreach(interface veloratslogging velora_ts)
  configure_file(cmake/${interface}.pc.in ${interface}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${interface}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

add_custom_target(uninstall
  ${CMAKE_COMMAND} -D manifest=${CMAKE_BINARY_DIR}/install_manifest.txt -P ${CMAKE_CURRENT_LIST_DIR}/Uninstall.cmake)

# The three files that a host needs, as a start.
if(WIN32)
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/examples/first-host/settings DESTINATION .)
else()
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/examples/first-host/settings
    DESTINATION ${CMAKE_INSTALL_DATADIR}/veloratslogging)
endif()

# What a Windows computer also needs: the compiler's run-time libraries, PostgreSQL's client, and the licences.
if(MINGW)
  install(DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/ DESTINATION ${CMAKE_INSTALL_BINDIR}
    FILES_MATCHING PATTERN "lib*.dll")
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/build/windows-dependencies/licences DESTINATION .)
  configure_file(packaging/windows/README.txt README.txt @ONLY NEWLINE_STYLE CRLF)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/README.txt THIRD-PARTY.md docs/windows.md docs/c.md DESTINATION .)
  install(DIRECTORY examples/c-host examples/csharp-host DESTINATION examples)
  # The exports of the C interface, from which other linkers make an import library of their own.
  set(exports ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/velora_ts.def)
  target_link_options(velora_ts PRIVATE -Wl,--output-def,${exports})
  install(FILES ${exports} DESTINATION ${CMAKE_INSTALL_LIBDIR})
  set(CPACK_STRIP_FILES ON)  # debuggers take what was built
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME VeloraTsLogging-${PROJECT_VERSION}-windows-x86_64)
  set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
  include(CPack)
endif()
