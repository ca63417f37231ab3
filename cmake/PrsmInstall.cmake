# Installs the library, its headers, the shipped data, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS prsm EXPORT prsmTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The stable interface: include/prsm (the bases, the registry and sheet instance, the spreadsheet
# functions; the design engine's headers are installed by design/) and each sheet's generated Params,
# Data and Model headers. The framework folder's headers (table index, text grid, data text, cell support) and
# the generated private headers (generated-private/: cell bodies, data indexes) stay in the build.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/prsm/framework ${PROJECT_SOURCE_DIR}/include/prsm/sheetfunc
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/prsm)
install(DIRECTORY ${PRSM_GENERATED_ROOT}/prsm/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/prsm
  FILES_MATCHING PATTERN "*.h" PATTERN "tests" EXCLUDE)

set(PRSM_INSTALL_DATADIR ${CMAKE_INSTALL_DATADIR}/prsm)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/ DESTINATION ${PRSM_INSTALL_DATADIR}
  PATTERN "tools" EXCLUDE PATTERN "generators" EXCLUDE)

set(PRSM_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/prsm)
install(EXPORT prsmTargets NAMESPACE prsm:: DESTINATION ${PRSM_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/prsmConfig.cmake.in
  ${CMAKE_BINARY_DIR}/prsmConfig.cmake
  INSTALL_DESTINATION ${PRSM_CMAKE_DIR}
  PATH_VARS PRSM_INSTALL_DATADIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/prsmConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/prsmConfig.cmake ${CMAKE_BINARY_DIR}/prsmConfigVersion.cmake
  DESTINATION ${PRSM_CMAKE_DIR})

# The pkg-config file finds its prefix relative to itself, so a staged install works as well.
file(RELATIVE_PATH PRSM_PC_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" PRSM_PC_PREFIX "${PRSM_PC_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/prsm.pc.in ${CMAKE_BINARY_DIR}/prsm.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/prsm.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
