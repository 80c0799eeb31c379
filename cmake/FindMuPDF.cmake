# The engine is a static library whose package lists none of what it needs, so that list is kept here.
# Defines MuPDF::MuPDF.
find_path(MUPDF_INCLUDE_DIR mupdf/fitz.h)
find_library(MUPDF_LIBRARY mupdf)
find_library(MUPDF_THIRD_LIBRARY mupdf-third)
pkg_check_modules(MUPDF_NEEDS QUIET IMPORTED_TARGET freetype2 harfbuzz libopenjp2 zlib libjpeg)
set(MUPDF_PLAIN_LIBRARIES)
foreach(name jbig2dec mujs gumbo)
    find_library(MUPDF_${name}_LIBRARY ${name})
    list(APPEND MUPDF_PLAIN_LIBRARIES ${MUPDF_${name}_LIBRARY})
endforeach()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(MuPDF REQUIRED_VARS MUPDF_LIBRARY MUPDF_THIRD_LIBRARY MUPDF_INCLUDE_DIR
                                  MUPDF_NEEDS_FOUND MUPDF_PLAIN_LIBRARIES)

if(MuPDF_FOUND AND NOT TARGET MuPDF::MuPDF)
    add_library(MuPDF::MuPDF INTERFACE IMPORTED)
    target_include_directories(MuPDF::MuPDF SYSTEM INTERFACE ${MUPDF_INCLUDE_DIR})
    target_link_libraries(MuPDF::MuPDF INTERFACE ${MUPDF_LIBRARY} ${MUPDF_THIRD_LIBRARY} ${MUPDF_PLAIN_LIBRARIES}
                          PkgConfig::MUPDF_NEEDS m)
endif()
