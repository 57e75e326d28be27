# Sources of the program that read and write files and know no command line; the fuzz target is made of them too.
set(QORV_TOOL_FORMATS)
foreach(source base/input base/output base/random_access base/text
    picture/jpeg picture/picture picture/picture_file picture/pixel_format picture/png picture/pnm
    stream/avi stream/nal
    video/converter video/format video/full_planes video/reader video/sampler video/scaler)
  list(APPEND QORV_TOOL_FORMATS ${CMAKE_CURRENT_LIST_DIR}/${source}.cpp)
endforeach()
