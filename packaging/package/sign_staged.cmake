# Run by cpack after staging the bundle and before packing it.
set(app "${CPACK_TEMPORARY_DIRECTORY}/tray${CPACK_PACKAGING_INSTALL_PREFIX}/Korvel.app")
if(NOT EXISTS "${app}/Contents/Info.plist")
    message(FATAL_ERROR "No bundle at ${app}")
endif()
find_program(CODESIGN codesign)
if(CODESIGN OR CPACK_GENERATOR STREQUAL "productbuild")
    execute_process(COMMAND "${CPACK_KORVEL_SIGN}" "${app}" COMMAND_ERROR_IS_FATAL ANY)
endif()
