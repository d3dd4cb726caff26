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
# Every member of a binary is found by its full path from the root: #include "Core/Session/SessionPlan.h".
include_directories("${CMAKE_SOURCE_DIR}")

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
    set(CMAKE_OBJCXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

add_compile_options(-Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Members with a default may be left out of a designated initialiser: that is what the defaults are for.
    add_compile_options(-Wno-missing-field-initializers)
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
