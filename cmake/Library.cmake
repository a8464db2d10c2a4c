# The library: the folders below, each with all its sources, and of platform/ the port for the target.
# Compiled once, as objects that the shared library and the test programs share.

set(VANTOR_FOLDERS platform host dicom records directory media wrappers sr)
set(VANTOR_PORT posix)
if(WIN32)
    set(VANTOR_PORT windows)
endif()

set(VANTOR_SOURCES "")
set(VANTOR_HEADERS "")
foreach(folder IN LISTS VANTOR_FOLDERS)
    file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*.cpp")
    file(GLOB headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*.h")
    list(APPEND VANTOR_SOURCES ${sources})
    list(APPEND VANTOR_HEADERS ${headers})
endforeach()
file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/platform/${VANTOR_PORT}/*.cpp")
list(APPEND VANTOR_SOURCES ${sources})

find_package(Threads REQUIRED)

add_library(vantor_objects OBJECT ${VANTOR_SOURCES})
target_include_directories(vantor_objects PUBLIC "${PROJECT_SOURCE_DIR}")
target_link_libraries(vantor_objects PRIVATE vantor_settings PUBLIC Threads::Threads ${CMAKE_DL_LIBS})
if(WIN32)
    target_compile_definitions(vantor_objects PRIVATE NOMINMAX WIN32_LEAN_AND_MEAN)
    target_link_libraries(vantor_objects PUBLIC advapi32 avifil32 msvfw32 ole32 shell32 user32 uuid)
endif()

add_library(vantor SHARED)
add_library(Vantor::vantor ALIAS vantor)
target_link_libraries(vantor PRIVATE vantor_objects vantor_settings)
target_compile_features(vantor PUBLIC cxx_std_20)
target_sources(vantor PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${VANTOR_HEADERS})
vantor_place(vantor)
set_target_properties(vantor PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    WINDOWS_EXPORT_ALL_SYMBOLS ON
    VERIFY_INTERFACE_HEADER_SETS ON)
if(MINGW)
    # The DLL gives away its own operations, not those of the compiler's runtime that is linked into it.
    target_link_options(vantor PRIVATE -Wl,--exclude-libs,ALL)
endif()
