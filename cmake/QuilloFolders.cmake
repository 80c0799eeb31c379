# The folders of src, each below those that it may use. tests and bench have the same folders; there the rooms of one
# subsystem share a program, in the folder above them.
set(QUILLO_FOLDERS
    Base
    Platform/Files
    Platform/PDF
    Platform/Services
    Platform/Conversion
    Platform/Conversion/Office
    Platform/Viewer/Column
    Platform/Viewer/Tiles
    Platform/Viewer/Selection
    Platform/Viewer/Filling
    Platform/Viewer/Remarks
    Platform/Viewer/Touch
    Platform/Viewer
    MathRender
    MathBundle
    Symbols
    Models
    PDFView/Annotations
    Document
    Document/Recovery
    Document/Operations
    PDFView
    AI/Wire
    AI/Providers
    AI/Tools
    AI/Conversation
    AI
    Views/Controls
    Views/Markdown/Dialect
    Views/Markdown
    Views/Assistant/Bubbles
    Views/Assistant
    Views/Toolbar
    Views/Signatures
    Views/Sheets
    Views/Sidebar
    Views/Landing
    Views/Preview
    Views/Settings
    Views/Workspace
    Views
    App/Windows
    App)

# Adds each of these folders that stands below the calling one and has something to build.
macro(quillo_add_folders)
    foreach(folder IN LISTS QUILLO_FOLDERS)
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt)
            add_subdirectory(${folder})
        endif()
    endforeach()
endmacro()
