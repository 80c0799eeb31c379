# The folders of src, each below those that it may use. tests and bench have the same folders.
set(QUILLO_FOLDERS
    Base
    Platform/Files
    Platform/PDF
    Platform/Services
    Platform/Viewer
    MathRender
    MathBundle
    Symbols
    Models
    PDFView/Annotations
    Document
    PDFView
    AI
    Views
    App)

# Adds each of these folders that stands below the calling one and has something to build.
macro(quillo_add_folders)
    foreach(folder IN LISTS QUILLO_FOLDERS)
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt)
            add_subdirectory(${folder})
        endif()
    endforeach()
endmacro()
