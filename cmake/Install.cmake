# What `cmake --install` lays down: the library, its headers, and what CMake's find_package and
# pkg-config need. Both descriptions find the rest from where they stand, so the installed tree can be moved.
install(TARGETS quorvel quorvel_hpp EXPORT quorvel-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/quorvel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

set(QUORVEL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/quorvel)
install(EXPORT quorvel-targets NAMESPACE quorvel:: DESTINATION ${QUORVEL_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/quorvel-config.cmake.in quorvel-config.cmake
  INSTALL_DESTINATION ${QUORVEL_CMAKE_DIR} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/quorvel-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/quorvel-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/quorvel-config-version.cmake
  DESTINATION ${QUORVEL_CMAKE_DIR})

# From the folder of quorvel.pc to the prefix, and from the prefix to the rest, whether the folders were given
# relative or absolute.
file(RELATIVE_PATH QUORVEL_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH QUORVEL_PC_LIBDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH QUORVEL_PC_INCLUDEDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(${PROJECT_SOURCE_DIR}/cmake/quorvel.pc.in quorvel.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/quorvel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
