# Run by cpack between installing the bundle into its own folder and packing it.
file(GLOB_RECURSE plists "${CPACK_TEMPORARY_DIRECTORY}/*/Korvel.app/Contents/Info.plist")
list(LENGTH plists count)
if(NOT count EQUAL 1)
    message(FATAL_ERROR "Expected one bundle below ${CPACK_TEMPORARY_DIRECTORY}, found: ${plists}")
endif()
cmake_path(GET plists PARENT_PATH contents)
cmake_path(GET contents PARENT_PATH app)
execute_process(COMMAND "${CPACK_KORVEL_SIGN}" "${app}" COMMAND_ERROR_IS_FATAL ANY)
