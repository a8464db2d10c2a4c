# The header-only packages of the command-line host, CLI11::CLI11 and nlohmann_json::nlohmann_json.
#
# A cross build takes the headers of the build machine: they are links in the build tree, because the folder
# that they come from also has the system headers of the wrong system.

function(vantor_borrow_headers target folder header)
    find_path(VANTOR_${folder}_HEADERS "${folder}/${header}" PATHS /usr/include /usr/local/include
              NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    set(staged "${PROJECT_BINARY_DIR}/host-packages/${folder}")
    file(MAKE_DIRECTORY "${staged}")
    file(CREATE_LINK "${VANTOR_${folder}_HEADERS}/${folder}" "${staged}/${folder}" COPY_ON_ERROR SYMBOLIC)
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} SYSTEM INTERFACE "${staged}")
endfunction()

if(CMAKE_CROSSCOMPILING)
    vantor_borrow_headers(CLI11::CLI11 CLI CLI.hpp)
    vantor_borrow_headers(nlohmann_json::nlohmann_json nlohmann json.hpp)
else()
    find_package(CLI11 REQUIRED)
    find_package(nlohmann_json REQUIRED)
    set_target_properties(CLI11::CLI11 nlohmann_json::nlohmann_json PROPERTIES IMPORTED_GLOBAL ON)
endif()
