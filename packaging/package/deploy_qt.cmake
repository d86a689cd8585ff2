# Copies Qt, and the libraries that are not part of macOS, into the bundle APP, with the program MACDEPLOYQT.
# macdeployqt continues after an error and reports it only in its output.
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
