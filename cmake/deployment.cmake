# Build-time deployment data: everything that the operator of the service decides.
#
# The defaults are reserved example names (RFC 2606), documentation addresses (RFC 5737) and a published key, so a
# development build cannot reach anyone's servers. cpack accepts these defaults only for a trial. A release sets all of
# them on the CMake command line, e.g.
#   cmake --preset release -DKORVEL_CN_SERVER=relay.example.cn:443 -DKORVEL_UPDATE_PUBKEY=...
# Servers have the form "host:port", in lower case.

# RFC 8032, section 7.1, test 1. Its private key is public.
set(published_key "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=")

set(KORVEL_VERSION "0.1.0" CACHE STRING "Version of the package, MAJOR.MINOR.PATCH")
set(KORVEL_EDITION "cn" CACHE STRING "Edition of this build: cn (mainland) or intl (international)")
set_property(CACHE KORVEL_EDITION PROPERTY STRINGS cn intl)
set(KORVEL_CN_SERVER "cn.korvel.example:443" CACHE STRING "Account server of the mainland edition")
set(KORVEL_INTL_SERVER "intl.korvel.example:443" CACHE STRING "Account server of the international edition")
set(KORVEL_INTL_ADDRESS_1 "192.0.2.10:443" CACHE STRING "First numeric-address international server, port 443")
set(KORVEL_INTL_ADDRESS_2 "198.51.100.10:443" CACHE STRING "Second numeric-address international server, port 443")
set(KORVEL_INTL_ADDRESS_3 "203.0.113.10:8443" CACHE STRING "Third numeric-address international server, port 8443")
set(KORVEL_SITE "https://korvel.example" CACHE STRING "Product web site, scheme and host only")
set(KORVEL_UPDATE_PUBKEY "${published_key}" CACHE STRING
    "Ed25519 public key that verifies update manifests: base64 of its 32 bytes, 44 characters. The default is for development only")
option(KORVEL_TRIAL "Let cpack make a package that is no release; its name says so" OFF)

if(NOT KORVEL_EDITION MATCHES "^(cn|intl)$")
    message(FATAL_ERROR "KORVEL_EDITION is '${KORVEL_EDITION}'; it must be cn or intl")
endif()

set(KORVEL_PLACEHOLDERS "") # the variables with example values, which a release must not contain

# 32 bytes are 42 characters of six bits, one character of four bits and the padding.
string(LENGTH "${KORVEL_UPDATE_PUBKEY}" length)
if(NOT length EQUAL 44 OR NOT KORVEL_UPDATE_PUBKEY MATCHES "^[A-Za-z0-9+/]+[AEIMQUYcgkosw048]=$")
    message(FATAL_ERROR "KORVEL_UPDATE_PUBKEY is '${KORVEL_UPDATE_PUBKEY}'; it must be base64 of 32 bytes")
endif()
if(KORVEL_UPDATE_PUBKEY STREQUAL published_key)
    list(APPEND KORVEL_PLACEHOLDERS KORVEL_UPDATE_PUBKEY)
endif()

set(reserved "(^|[./])(example|example\\.(com|net|org)|test|invalid|localhost)(:|$)|^(127\\.|192\\.0\\.2|198\\.51\\.100|203\\.0\\.113)")
foreach(name IN ITEMS CN_SERVER INTL_SERVER INTL_ADDRESS_1 INTL_ADDRESS_2 INTL_ADDRESS_3)
    if(NOT KORVEL_${name} MATCHES "^[a-z0-9][a-z0-9.-]*:[1-9][0-9]*$")
        message(FATAL_ERROR "KORVEL_${name} is '${KORVEL_${name}}'; it must be host:port in lower case")
    endif()
    if(KORVEL_${name} MATCHES "${reserved}")
        list(APPEND KORVEL_PLACEHOLDERS KORVEL_${name})
    endif()
endforeach()
if(NOT KORVEL_SITE MATCHES "^https://[a-z0-9][a-z0-9.-]*$")
    message(FATAL_ERROR "KORVEL_SITE is '${KORVEL_SITE}'; it must be https:// and a host in lower case")
endif()
if(KORVEL_SITE MATCHES "${reserved}")
    list(APPEND KORVEL_PLACEHOLDERS KORVEL_SITE)
endif()
