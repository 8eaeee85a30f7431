# Installation: library, public headers, run-time data, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

set(ONDREL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Ondrel)
set(ONDREL_INSTALL_DATADIR ${CMAKE_INSTALL_DATADIR}/ondrel)

install(TARGETS ondrel EXPORT OndrelTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ondrel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "*_p.h" EXCLUDE)
install(FILES ${PROJECT_BINARY_DIR}/include/ondrel/ondrel_export.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ondrel)
install(DIRECTORY data/ DESTINATION ${ONDREL_INSTALL_DATADIR} FILES_MATCHING PATTERN "*.svg" PATTERN "*.css" PATTERN "*.icc"
  PATTERN "*.rnc" PATTERN "*.rng")

install(EXPORT OndrelTargets NAMESPACE Ondrel:: DESTINATION ${ONDREL_CMAKE_DIR})
configure_package_config_file(cmake/OndrelConfig.cmake.in ${PROJECT_BINARY_DIR}/OndrelConfig.cmake
  INSTALL_DESTINATION ${ONDREL_CMAKE_DIR} PATH_VARS ONDREL_INSTALL_DATADIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OndrelConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES cmake/OndrelDeployData.cmake ${PROJECT_BINARY_DIR}/OndrelConfig.cmake
  ${PROJECT_BINARY_DIR}/OndrelConfigVersion.cmake
  DESTINATION ${ONDREL_CMAKE_DIR})

if(BUILD_SHARED_LIBS)
  set(ONDREL_PC_CFLAGS "")
else()
  set(ONDREL_PC_CFLAGS "-DONDREL_STATIC_DEFINE")
endif()
# The way from the file to the prefix, so that a moved installation is found where it is.
file(RELATIVE_PATH ONDREL_PC_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/ondrel.pc.in ${PROJECT_BINARY_DIR}/ondrel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ondrel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
