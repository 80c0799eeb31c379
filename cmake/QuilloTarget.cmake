# What every target of ours is built with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

option(QUILLO_WERROR "Warnings are errors" OFF)
option(QUILLO_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(QUILLO_SANITIZE_THREADS "Build with the thread sanitizer" OFF)

add_library(quillo_flags INTERFACE)
target_compile_options(quillo_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                       -Woverloaded-virtual $<$<BOOL:${QUILLO_WERROR}>:-Werror>)
# In a file that includes others, as unity builds compile them, GCC takes the frames of coroutines in unnamed namespaces
# for types of a header.
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(quillo_flags INTERFACE -Wno-subobject-linkage)
endif()
target_compile_definitions(quillo_flags INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_DEPRECATED_WARNINGS
                           $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(QUILLO_SANITIZE)
    target_compile_options(quillo_flags INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer
                           -fno-sanitize-recover=undefined)
    target_link_options(quillo_flags INTERFACE -fsanitize=address,undefined)
endif()
if(QUILLO_SANITIZE_THREADS)
    target_compile_options(quillo_flags INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
    target_link_options(quillo_flags INTERFACE -fsanitize=thread)
endif()

add_library(quillo_options INTERFACE)
target_link_libraries(quillo_options INTERFACE quillo_flags quillo_base)

# The target exports its own folder, and sees the headers of those rooms; PUBLIC: its users do, too.
function(quillo_show_headers target scope)
    target_include_directories(${target} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    foreach(room IN LISTS ARGN)
        target_include_directories(${target} ${scope} $<TARGET_PROPERTY:${room},INTERFACE_INCLUDE_DIRECTORIES>)
    endforeach()
endfunction()

# quillo_library(<target> SOURCES … PUBLIC <libraries> PRIVATE <libraries> [ROOMS <rooms>] [OPEN_ROOMS <rooms>])
# One library a folder. It exports its own folder only, so an include of a folder that is not listed fails to build.
# A subsystem whose pieces need each other both ways is one library of several rooms (see quillo_room): it holds the code
# of all that it lists here, and its users see the headers of the open ones.
function(quillo_library target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;PUBLIC;PRIVATE;ROOMS;OPEN_ROOMS")
    if(ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "quillo_library(${target}): what is ${ARG_UNPARSED_ARGUMENTS}?")
    endif()
    add_library(${target} STATIC ${ARG_SOURCES})
    quillo_show_headers(${target} PUBLIC ${ARG_OPEN_ROOMS})
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC}
                          PRIVATE quillo_options ${ARG_PRIVATE} ${ARG_ROOMS} ${ARG_OPEN_ROOMS})
    quillo_use_precompiled(${target} ${ARG_PUBLIC} ${ARG_PRIVATE})
    # Widgets name their measures alike (margin, cornerRadius), so their files can't be compiled as one.
    if(CMAKE_CURRENT_SOURCE_DIR MATCHES "/src/(Views|App)(/|$)")
        set_target_properties(${target} PROPERTIES UNITY_BUILD OFF)
    endif()
endfunction()

# quillo_room(<target> SOURCES … [USES <rooms>] [LIBRARIES <libraries>])
# One room of such a library: a folder whose files see its own headers, those of the rooms that it uses and those of the
# libraries, and no others. Rooms that the used ones use are listed too. The arrows point one way.
function(quillo_room target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;USES;LIBRARIES")
    if(ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "quillo_room(${target}): what is ${ARG_UNPARSED_ARGUMENTS}?")
    endif()
    add_library(${target} OBJECT ${ARG_SOURCES})
    quillo_show_headers(${target} PRIVATE ${ARG_USES})
    target_link_libraries(${target} PRIVATE quillo_options ${ARG_LIBRARIES})
    quillo_use_precompiled(${target} ${ARG_LIBRARIES})
endfunction()

# quillo_test(<target> [COST <seconds>] SOURCES … LIBRARIES <libraries> [TIMEOUT <seconds>])
# One test program a folder or subsystem; main() comes from tests/TestMain.cpp. ctest runs each program once, without a
# display: its tests share a process, which takes a third of the time that a process each did. COST is about what the program
# takes: ctest begins with the longest, so that none is left alone at the end. TIMEOUT only catches one that hangs.
function(quillo_test target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "COST;TIMEOUT" "SOURCES;LIBRARIES")
    if(ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "quillo_test(${target}): what is ${ARG_UNPARSED_ARGUMENTS}?")
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 900)
    endif()
    if(NOT ARG_COST)
        set(ARG_COST 1)
    endif()
    add_executable(${target} ${ARG_SOURCES})
    target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} PRIVATE quillo_options quillo_test_main ${ARG_LIBRARIES} GTest::gtest Qt6::Widgets Qt6::Test)
    target_precompile_headers(${target} REUSE_FROM quillo_precompiled_tests)
    add_test(NAME ${target} COMMAND ${target})
    set_tests_properties(${target} PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_SCALE_FACTOR=1"
                         TIMEOUT ${ARG_TIMEOUT} COST ${ARG_COST})
endfunction()
