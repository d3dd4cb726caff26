# What macOS knows of the programs: a property list in each, and the application's bundle around those that ship.
# On other systems nothing of it happens. CMake's own bundles are named exactly as their program, which ours is not.

# The names of Brand, and what a signature is checked by, inside the program: in the bundle or out of it.
function(vespra_property_list target)
    if(NOT APPLE)
        return()
    endif()
    set(VESPRA_PROGRAM "${target}")
    set(VESPRA_PROGRAM_ID "${VESPRA_BRAND_APP_BUNDLE_ID}.${target}")
    if(ARGC GREATER 1)
        set(VESPRA_PROGRAM_ID "${ARGV1}")
    endif()
    set(list "${CMAKE_CURRENT_BINARY_DIR}/${target}-Info.plist")
    configure_file("${PROJECT_SOURCE_DIR}/Resources/macos/ProgramInfo.plist.in" "${list}" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:-sectcreate,__TEXT,__info_plist,${list}")
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${list}")
endfunction()

# A program that ships, with the identifier that its signature carries on macOS. There it is built where it is installed
# too: in the bundle, with all others; without the application there is none.
function(vespra_ship target identifier)
    vespra_property_list(${target} "${identifier}")
    if(NOT APPLE OR NOT VESPRA_SHELL)
        return()
    endif()
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${VESPRA_BUNDLE}/Contents/MacOS")
    # Of a library that is linked and not used no copy has to be in the bundle.
    target_link_options(${target} PRIVATE "LINKER:-dead_strip" "LINKER:-dead_strip_dylibs")
endfunction()

if(APPLE)
    set(VESPRA_BUNDLE "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${VESPRA_BRAND_APP_NAME}.app")
    set(VESPRA_APPLICATIONS "/Applications" CACHE PATH "Where the macOS application is installed")
    set(VESPRA_SIGNING_IDENTITY "-" CACHE STRING "Whose signature it gets there; \"-\" is nobody's, for this Mac alone")
endif()
