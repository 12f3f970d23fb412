# Installs three components:
#
#   runtime         the shared library
#   development     the headers, the static library, and the files for CMake and pkg-config
#   documentation   the change log, and the reference if it was built
#
# The installed files refer to each other by relative paths, so that they may be moved together.

include(CMakePackageConfigHelpers)

set(config_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Ovelin)
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS ovelin
    EXPORT OvelinTargets
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    FILE_SET HEADERS COMPONENT development
)
install(EXPORT OvelinTargets
    NAMESPACE Ovelin::
    DESTINATION ${config_folder}
    COMPONENT development
)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/OvelinConfig.cmake.in
    ${PROJECT_BINARY_DIR}/OvelinConfig.cmake
    INSTALL_DESTINATION ${config_folder}
    NO_SET_AND_CHECK_MACRO
)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OvelinConfigVersion.cmake
    COMPATIBILITY SameMajorVersion
)
install(
    FILES
        ${PROJECT_BINARY_DIR}/OvelinConfig.cmake
        ${PROJECT_BINARY_DIR}/OvelinConfigVersion.cmake
    DESTINATION ${config_folder}
    COMPONENT development
)

# path_from_pkgconfig(<result> <folder>)
#
# Sets <result> to the path of an installed folder relative to ovelin.pc. <folder> is absolute, or relative to
# the prefix.
function(path_from_pkgconfig result folder)
    set(from ${pkgconfig_folder})
    cmake_path(ABSOLUTE_PATH from BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} NORMALIZE)
    cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} NORMALIZE)
    cmake_path(RELATIVE_PATH folder BASE_DIRECTORY ${from})
    set(${result} "\${pcfiledir}/${folder}" PARENT_SCOPE)
endfunction()

path_from_pkgconfig(pkgconfig_libdir ${CMAKE_INSTALL_LIBDIR})
path_from_pkgconfig(pkgconfig_includedir ${CMAKE_INSTALL_INCLUDEDIR})
set(pkgconfig_definitions "")
if(NOT BUILD_SHARED_LIBS)
    set(pkgconfig_definitions " -DOVELIN_STATIC")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/ovelin.pc.in ${PROJECT_BINARY_DIR}/ovelin.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ovelin.pc
    DESTINATION ${pkgconfig_folder}
    COMPONENT development
)

install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT documentation
)
