# The part of the command-line host that shows pixels, which its tests and fuzz targets have as well:
# VANTOR_PICTURE_SOURCES, to be linked with VANTOR_PICTURE_LIBRARIES. JPEG is in it where libjpeg-turbo is.

option(VANTOR_JPEG "Build the command-line host with JPEG, if there is libjpeg-turbo" ON)

set(jpeg_source cli/jpeg/NoJpegCodec.cpp)
set(VANTOR_PICTURE_LIBRARIES "")
if(VANTOR_JPEG)
    find_package(JPEG)
endif()
if(JPEG_FOUND)
    # Other libraries with this interface do not take pixels with blue first.
    file(STRINGS "${JPEG_INCLUDE_DIRS}/jpeglib.h" takes_blue_first REGEX "JCS_EXT_BGR" LIMIT_COUNT 1)
    if(takes_blue_first)
        set(jpeg_source cli/jpeg/LibJpegCodec.cpp)
        set(VANTOR_PICTURE_LIBRARIES JPEG::JPEG)
    endif()
endif()

set(VANTOR_PICTURE_SOURCES ${jpeg_source})
foreach(name DeviceBitmap FileImage FilePicture FramePicture MotionJpeg PaletteColors RleFrame)
    list(APPEND VANTOR_PICTURE_SOURCES cli/${name}.cpp)
endforeach()
list(TRANSFORM VANTOR_PICTURE_SOURCES PREPEND "${PROJECT_SOURCE_DIR}/")
