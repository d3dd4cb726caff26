# How every target of the project is built.

include(CheckCXXCompilerFlag)
include(GNUInstallDirs)

if(CMAKE_CXX_COMPILER_ID STREQUAL "AppleClang" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 16)
    message(FATAL_ERROR "Xcode 16 or later is needed, this is the compiler of an older one (${CMAKE_CXX_COMPILER_VERSION})")
endif()

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 23)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
# vespra_shows(TARGET FOLDER...): who links TARGET finds its headers by their full path from the root, as in
# #include "Core/Session/SessionPlan.h". Nothing else of the root is found: an include of what a target does not link
# does not compile, so no layer can know the one above.
function(vespra_shows target)
    string(REPLACE ";" " " folders "${ARGN}")
    set_property(GLOBAL APPEND PROPERTY VESPRA_LAYERS "${target}|${folders}")
    set(scope PUBLIC)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "INTERFACE_LIBRARY")
        set(scope INTERFACE)
    endif()
    set(shown "${CMAKE_BINARY_DIR}/include/${target}")
    foreach(folder IN LISTS ARGN)
        cmake_path(GET folder PARENT_PATH parent)
        file(MAKE_DIRECTORY "${shown}/${parent}")
        file(CREATE_LINK "${CMAKE_SOURCE_DIR}/${folder}" "${shown}/${folder}" SYMBOLIC)
    endforeach()
    target_include_directories(${target} ${scope} "${shown}")
endfunction()

# Writes what each target shows and links, a line each, for scripts/layers: "target|folder ...|library ...".
function(vespra_write_layers file)
    get_property(layers GLOBAL PROPERTY VESPRA_LAYERS)
    set(lines "")
    foreach(layer IN LISTS layers)
        string(REGEX REPLACE "[|].*" "" target "${layer}")
        get_target_property(links ${target} INTERFACE_LINK_LIBRARIES)
        get_target_property(type ${target} TYPE)
        if(NOT type STREQUAL "INTERFACE_LIBRARY")
            get_target_property(links ${target} LINK_LIBRARIES)
        endif()
        string(REPLACE ";" " " links "${links}")
        string(APPEND lines "${layer}|${links}\n")
    endforeach()
    file(WRITE "${file}" "${lines}")
endfunction()

# Most of a build is reading the same headers again, so sources are compiled several at a time. A build with OFF shows
# that each file includes what it uses.
option(CMAKE_UNITY_BUILD "Compile several sources at a time" ON)
set(CMAKE_UNITY_BUILD_BATCH_SIZE 12)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
    set(CMAKE_OBJCXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

add_compile_options(-Wall -Wextra -Wnon-virtual-dtor -Woverloaded-virtual)
if(NOT CMAKE_UNITY_BUILD)
    # Sources that are compiled together see each other's names, and shadow what is none of theirs.
    add_compile_options(-Wshadow)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Members with a default may be left out of a designated initialiser: that is what the defaults are for.
    add_compile_options(-Wno-missing-field-initializers)
    # GCC 12 takes a text that is put before a string for an overlapping copy.
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    add_compile_options(-Wno-missing-field-initializers)
    # The designated ones have a warning of their own in newer versions only.
    check_cxx_compiler_flag(-Wmissing-designated-field-initializers VESPRA_WARNS_OF_DESIGNATED_FIELDS)
    if(VESPRA_WARNS_OF_DESIGNATED_FIELDS)
        add_compile_options(-Wno-missing-designated-field-initializers)
    endif()
endif()
if(VESPRA_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()
if(APPLE)
    add_compile_options($<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)
endif()
if(VESPRA_SANITIZE)
    add_compile_options(-fsanitize=${VESPRA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VESPRA_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # With instrumented code GCC 12 takes members of the standard library's for uninitialised.
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
endif()

if(APPLE)
    set(VESPRA_SYSTEM macos)
else()
    set(VESPRA_SYSTEM linux)
endif()

if(APPLE AND CMAKE_CROSSCOMPILING AND NOT TARGET WrapOpenGL::WrapOpenGL)
    # Qt asks for these; nothing here uses them, and they would be those of another system.
    add_library(WrapOpenGL::WrapOpenGL INTERFACE IMPORTED GLOBAL)
    set(CMAKE_DISABLE_FIND_PACKAGE_XKB ON)
endif()
