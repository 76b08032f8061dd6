# What `cmake --install` lays down: the library, its headers, and what CMake's find_package and
# pkg-config need. Both descriptions find the rest from where they stand, so the installed tree can be moved.
install(TARGETS quorvel quorvel_hpp EXPORT quorvel-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/quorvel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

# The virtual PIN pad for tests in C++: its headers stand beside the library's, under a folder of their own, as they are
# included as "simulator/..." and "wire/...".
if(TARGET quorvel_sim)
  foreach(part IN ITEMS simulator wire)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/${part} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quorvel-sim
      FILES_MATCHING PATTERN "*.h" PATTERN face EXCLUDE PATTERN web EXCLUDE PATTERN exam EXCLUDE PATTERN scenarios EXCLUDE PATTERN completion EXCLUDE)
  endforeach()
  set_target_properties(quorvel_sim PROPERTIES EXPORT_NAME simulator)
  set_target_properties(quorvel_wire PROPERTIES EXPORT_NAME wire)
  foreach(target IN ITEMS quorvel_sim quorvel_wire)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} PUBLIC $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/quorvel-sim>)
  endforeach()
  install(TARGETS quorvel_sim quorvel_wire EXPORT quorvel-simulator-targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

set(QUORVEL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/quorvel)
install(EXPORT quorvel-targets NAMESPACE quorvel:: DESTINATION ${QUORVEL_CMAKE_DIR})
if(TARGET quorvel_sim)
  install(EXPORT quorvel-simulator-targets NAMESPACE quorvel:: DESTINATION ${QUORVEL_CMAKE_DIR})
endif()
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/quorvel-config.cmake.in quorvel-config.cmake
  INSTALL_DESTINATION ${QUORVEL_CMAKE_DIR} NO_SET_AND_CHECK_MACRO)
# Before 1.0 a minor version may break what the one before it promised.
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(compatible SameMinorVersion)
else()
  set(compatible SameMajorVersion)
endif()
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/quorvel-config-version.cmake COMPATIBILITY ${compatible})
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/quorvel-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/quorvel-config-version.cmake
  DESTINATION ${QUORVEL_CMAKE_DIR})

# From the folder of quorvel.pc to the prefix, and from the prefix to the rest, whether the folders were given
# relative or absolute.
file(RELATIVE_PATH QUORVEL_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH QUORVEL_PC_LIBDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH QUORVEL_PC_INCLUDEDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
# The loader looks for libraries under /usr by itself. Where it does not, programs are told where this one is; only the
# installation knows its prefix, which need not be the one that was configured.
set(QUORVEL_PC_RPATH "")
configure_file(${PROJECT_SOURCE_DIR}/cmake/quorvel.pc.in pkgconfig/system/quorvel.pc @ONLY)
set(QUORVEL_PC_RPATH " -Wl,-rpath,\${libdir}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/quorvel.pc.in pkgconfig/elsewhere/quorvel.pc @ONLY)
install(CODE "set(quorvel_pc_for elsewhere)
if(CMAKE_INSTALL_PREFIX MATCHES \"^/(usr/?)?$\")
  set(quorvel_pc_for system)
endif()")
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/pkgconfig/\${quorvel_pc_for}/quorvel.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
