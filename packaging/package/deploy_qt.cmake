# Puts Qt, and the libraries that are no part of macOS, into the bundle APP, with the program MACDEPLOYQT. That goes on
# after an error, and tells of it by what it prints alone.
file(REAL_PATH "${APP}" app)
file(GLOB helpers "${app}/Contents/Helpers/*")
list(TRANSFORM helpers PREPEND "-executable=")
execute_process(
    COMMAND ${CMAKE_COMMAND} -E env QT_FORCE_STDERR_LOGGING=1 "QT_MESSAGE_PATTERN=%{message}"
        "${MACDEPLOYQT}" "${app}" -always-overwrite -verbose=1 ${helpers}
    RESULT_VARIABLE status OUTPUT_VARIABLE printed ERROR_VARIABLE printed)
if(NOT status EQUAL 0 OR printed MATCHES "(^|\n)ERROR:")
    message(FATAL_ERROR "macdeployqt could not put all into ${app}:\n${printed}")
endif()
message(STATUS "${printed}")
