# The name of the installer package. It tells trays its edition: a mainland one ends in "-cn". It tells people a trial. As
# a script it prints the name: cmake -D KORVEL_VERSION=1.2.0 -D KORVEL_EDITION=cn -P name.cmake
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
