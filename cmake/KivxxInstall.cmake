# Installation: the library, its headers, a CMake package and a pkg-config file.

if(NOT KIVXX_INSTALL)
    return()
endif()

include(CMakePackageConfigHelpers)

set(kivxx_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kivxx)

install(TARGETS kivxx EXPORT kivxxTargets FILE_SET HEADERS)
install(EXPORT kivxxTargets NAMESPACE kivxx:: DESTINATION ${kivxx_cmake_dir})

configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/kivxxConfig.cmake.in
    ${PROJECT_BINARY_DIR}/kivxxConfig.cmake
    INSTALL_DESTINATION ${kivxx_cmake_dir})
# Before 1.0 every minor release may change the interface.
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/kivxxConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/kivxxConfig.cmake
    ${PROJECT_BINARY_DIR}/kivxxConfigVersion.cmake
    DESTINATION ${kivxx_cmake_dir})

# The prefix is derived from the file's own place, so that the installed tree
# can be moved.
file(RELATIVE_PATH kivxx_pc_prefix
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/kivxx.pc.in
    ${PROJECT_BINARY_DIR}/kivxx.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kivxx.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR})
# The library holds tables made from Unicode data.
install(FILES ${PROJECT_SOURCE_DIR}/data/unicode/LICENSE.txt
    DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME LICENSE.Unicode.txt)
