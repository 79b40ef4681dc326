# Installs the library, its headers, a CMake package and a pkg-config file. All of it may be moved:
# no file names the folder that it was installed into.
#
# What the shared library itself links against is of no concern to its users, so neither package
# file asks for it. For that, dependencies are linked PRIVATE and stay out of public headers.

include(CMakePackageConfigHelpers)

install(TARGETS ktManipulator EXPORT ktManipulatorConfig
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/ktManipulator
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN *.h PATTERN *.def)

# find_package(ktManipulator 3.0) gives the target ktManipulator::ktManipulator. There is nothing
# for a hand-written configuration file to do, so the exported targets are the configuration.
set(kt_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ktManipulator)
install(EXPORT ktManipulatorConfig NAMESPACE ktManipulator:: DESTINATION ${kt_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ktManipulatorConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ktManipulatorConfigVersion.cmake DESTINATION ${kt_package_dir})

file(RELATIVE_PATH kt_pc_to_prefix
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" kt_pc_to_prefix ${kt_pc_to_prefix})
cmake_path(APPEND kt_pc_libdir "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND kt_pc_includedir "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/ktManipulator.pc @ONLY CONTENT
"prefix=\${pcfiledir}/@kt_pc_to_prefix@
libdir=@kt_pc_libdir@
includedir=@kt_pc_includedir@

Name: @PROJECT_NAME@
Description: @PROJECT_DESCRIPTION@ (needs C++20)
Version: @PROJECT_VERSION@
Cflags: -I\${includedir}
Libs: -L\${libdir} -lktManipulator
")
install(FILES ${PROJECT_BINARY_DIR}/ktManipulator.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
