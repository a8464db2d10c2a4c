# Installs the library, its headers under include/vantor, the program, and what find_package(Vantor) and
# pkg-config need to offer the library. The installed tree can be moved as a whole.

include(CMakePackageConfigHelpers)

install(TARGETS vantor EXPORT VantorTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vantor)
if(VANTOR_BUILD_CLI)
    install(TARGETS vantor_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    if(NOT WIN32)
        set(shell_files "${PROJECT_SOURCE_DIR}/cli/shell")
        install(FILES "${PROJECT_SOURCE_DIR}/cli/vantor.1" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
        install(FILES "${shell_files}/_vantor" DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
        install(FILES "${shell_files}/vantor.bash" RENAME vantor
                DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    endif()
endif()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Vantor)
install(EXPORT VantorTargets NAMESPACE Vantor:: DESTINATION ${package_folder})
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/VantorConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/VantorConfig.cmake" INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/VantorConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/VantorConfig.cmake" "${PROJECT_BINARY_DIR}/VantorConfigVersion.cmake"
        DESTINATION ${package_folder})

set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH to_prefix "/${pkgconfig_folder}" "/")
configure_file("${PROJECT_SOURCE_DIR}/cmake/vantor.pc.in" "${PROJECT_BINARY_DIR}/vantor.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/vantor.pc" DESTINATION ${pkgconfig_folder})
