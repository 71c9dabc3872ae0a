# What `cmake --install` puts where, and how other build systems find it: pkg-config by
# tarnlibc.pc, CMake by find_package(tarnlibc), which gives
#   tarn::tarnlibc       the library and its headers
#   tarn::malloc         the own heap under the plain names
#   tarn::fortran, tarn::c   the library and the start-up object of a program in that language
# The drivers and the start-up objects install themselves.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

target_include_directories(tarnlibc INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_include_directories(tarnmalloc INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
set_target_properties(tarnmalloc PROPERTIES EXPORT_NAME malloc)

install(TARGETS tarnlibc tarnmalloc EXPORT tarnlibcTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/tarn DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp" PATTERN "*.f90")
install(DIRECTORY resources/fonts DESTINATION ${CMAKE_INSTALL_LIBDIR}/tarnlibc)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/tarnlibc)
install(EXPORT tarnlibcTargets NAMESPACE tarn:: DESTINATION ${package_folder})

configure_package_config_file(cmake/tarnlibcConfig.cmake.in ${PROJECT_BINARY_DIR}/install/tarnlibcConfig.cmake
  INSTALL_DESTINATION ${package_folder} PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/install/tarnlibcConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/install/tarnlibcConfig.cmake
  ${PROJECT_BINARY_DIR}/install/tarnlibcConfigVersion.cmake DESTINATION ${package_folder})

file(RELATIVE_PATH TARN_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" TARN_PREFIX_FROM_PC "${TARN_PREFIX_FROM_PC}")
configure_file(cmake/tarnlibc.pc.in ${PROJECT_BINARY_DIR}/install/tarnlibc.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/install/tarnlibc.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
