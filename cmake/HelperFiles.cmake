# The files that make vespra-helper a service of a Linux system, for a package and for a helper that installs itself.

string(REPLACE "." "/" VESPRA_HELPER_OBJECT_PATH "/${VESPRA_BRAND_HELPER_BUNDLE_ID}")
# polkit knows lower-case names only.
string(TOLOWER "${VESPRA_BRAND_HELPER_BUNDLE_ID}.closed-lid" VESPRA_HELPER_POLKIT_ACTION)
set(VESPRA_HELPER_PACKAGED_PROGRAM "${CMAKE_INSTALL_FULL_LIBEXECDIR}/vespra-helper")
# Where the application finds the helper that came with it, wherever both have been put.
file(RELATIVE_PATH VESPRA_HELPER_FROM_PROGRAMS "${CMAKE_INSTALL_FULL_BINDIR}" "${VESPRA_HELPER_PACKAGED_PROGRAM}")
set(VESPRA_HELPER_PACKAGED_ACTIVATION
    "/usr/share/dbus-1/system-services/${VESPRA_BRAND_HELPER_BUNDLE_ID}.service")

# A helper that installs itself has names of its own for everything, so that a package may come and go beside it.
# The bus looks into /lib last: there a package's activation goes before.
set(VESPRA_HELPER_LOCAL_FOLDER "/usr/local/libexec/${VESPRA_BRAND_HELPER_BUNDLE_ID}")
set(VESPRA_HELPER_LOCAL_PROGRAM "${VESPRA_HELPER_LOCAL_FOLDER}/vespra-helper")
set(VESPRA_HELPER_LOCAL_UNIT "vespra-helper-local.service")
set(VESPRA_HELPER_LOCAL_ACTIVATION "/lib/dbus-1/system-services/${VESPRA_BRAND_HELPER_BUNDLE_ID}.service")
set(VESPRA_HELPER_LOCAL_BUS_POLICY "/etc/dbus-1/system.d/${VESPRA_BRAND_HELPER_BUNDLE_ID}-local.conf")
set(VESPRA_HELPER_LOCAL_POLKIT_POLICY
    "/usr/share/polkit-1/actions/${VESPRA_BRAND_HELPER_BUNDLE_ID}-local.policy")
set(VESPRA_HELPER_FILES vespra-helper.service helper-activation.service helper-bus-policy.conf helper.policy)

function(vespra_configure_helper_files program unit folder)
    set(VESPRA_HELPER_PROGRAM "${program}")
    set(VESPRA_HELPER_UNIT_NAME "${unit}")
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
