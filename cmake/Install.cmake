include(CMakePackageConfigHelpers)

install(TARGETS KestrixCE EXPORT KestrixCETargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT KestrixCETargets NAMESPACE KestrixCE::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/KestrixCE)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KestrixCEConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KestrixCEConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/KestrixCE)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KestrixCEConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KestrixCEConfig.cmake
              ${PROJECT_BINARY_DIR}/KestrixCEConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/KestrixCE)

# The pkg-config file finds the prefix from where it lies, so the package can move.
file(RELATIVE_PATH KX_PC_TO_PREFIX
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/KestrixCE.pc.in ${PROJECT_BINARY_DIR}/KestrixCE.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/KestrixCE.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
