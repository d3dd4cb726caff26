# The files that make vespra-helper a service of a Linux system, for a package and for a helper that installs itself.

string(REPLACE "." "/" VESPRA_HELPER_OBJECT_PATH "/${VESPRA_BRAND_HELPER_BUNDLE_ID}")
# polkit knows lower-case names only.
string(TOLOWER "${VESPRA_BRAND_HELPER_BUNDLE_ID}.closed-lid" VESPRA_HELPER_POLKIT_ACTION)
set(VESPRA_HELPER_PACKAGED_PROGRAM "${CMAKE_INSTALL_FULL_LIBEXECDIR}/vespra-helper")
set(VESPRA_HELPER_LOCAL_PROGRAM "/usr/local/libexec/vespra-helper")
set(VESPRA_HELPER_FILES vespra-helper.service helper-activation.service helper-bus-policy.conf helper.policy)

function(vespra_configure_helper_files program folder)
    set(VESPRA_HELPER_PROGRAM "${program}")
    foreach(file IN LISTS VESPRA_HELPER_FILES)
        configure_file("${CMAKE_SOURCE_DIR}/Resources/linux/${file}.in" "${folder}/${file}" @ONLY)
    endforeach()
endfunction()

# Reads what vespra_configure_helper_files has written, for a C++ header.
macro(vespra_read_helper_files folder)
    file(READ "${folder}/vespra-helper.service" VESPRA_HELPER_UNIT)
    file(READ "${folder}/helper-activation.service" VESPRA_HELPER_ACTIVATION)
    file(READ "${folder}/helper-bus-policy.conf" VESPRA_HELPER_BUS_POLICY)
    file(READ "${folder}/helper.policy" VESPRA_HELPER_POLKIT_POLICY)
endmacro()

# Packages install below /usr; elsewhere the bus and polkit do not look, and the helper installs itself when asked to.
function(vespra_install_helper_files folder)
    if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        return()
    endif()
    set(name "${VESPRA_BRAND_HELPER_BUNDLE_ID}")
    install(FILES "${folder}/vespra-helper.service" DESTINATION lib/systemd/system)
    install(FILES "${folder}/helper-activation.service"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/dbus-1/system-services" RENAME "${name}.service")
    install(FILES "${folder}/helper-bus-policy.conf"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/dbus-1/system.d" RENAME "${name}.conf")
    install(FILES "${folder}/helper.policy"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/polkit-1/actions" RENAME "${name}.policy")
endfunction()
