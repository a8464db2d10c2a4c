# Where a build tree has the library and the program: in the same folders, seen from each other, as after
# installing, so that the program finds the library in both places. Windows has the DLL beside the program.
# Test, benchmark and fuzz programs stay in the folders of their sources.

file(RELATIVE_PATH VANTOR_LIB_FROM_BIN "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")

function(vantor_place target)
    set_target_properties(${target} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_BINDIR}"
        LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}"
        ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}"
        INSTALL_RPATH "$ORIGIN/${VANTOR_LIB_FROM_BIN}"
        BUILD_WITH_INSTALL_RPATH ON)
endfunction()
