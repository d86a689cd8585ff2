# The name of the installer package. Trays read the edition from it: a mainland package ends in "-cn". A trial has
# "-trial" in its name. Prints the name when run as a script:
#   cmake -D KORVEL_VERSION=1.2.0 -D KORVEL_EDITION=cn -P name.cmake
set(KORVEL_PACKAGE_NAME "Korvel-${KORVEL_VERSION}")
if(KORVEL_TRIAL)
    string(APPEND KORVEL_PACKAGE_NAME "-trial")
endif()
if(KORVEL_EDITION STREQUAL "cn")
    string(APPEND KORVEL_PACKAGE_NAME "-cn")
endif()
if(CMAKE_SCRIPT_MODE_FILE)
    message(NOTICE "${KORVEL_PACKAGE_NAME}")
endif()
