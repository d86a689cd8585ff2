# Build-time deployment data: everything that an operator of the service decides.
#
# The defaults are reserved example names (RFC 2606) and documentation addresses (RFC 5737), so that a development build
# can reach nobody's servers. A shipped build sets them on the CMake command line, e.g.
#   cmake --preset release -DKORVEL_CN_SERVER=relay.example.cn:443 -DKORVEL_UPDATE_PUBKEY=...
# Servers are written "host:port", in lower case.

set(KORVEL_VERSION "0.1.0" CACHE STRING "Version of the package, MAJOR.MINOR.PATCH")
set(KORVEL_EDITION "cn" CACHE STRING "Edition of this build: cn (mainland) or intl (international)")
set_property(CACHE KORVEL_EDITION PROPERTY STRINGS cn intl)
set(KORVEL_CN_SERVER "cn.korvel.example:443" CACHE STRING "Account server of the mainland edition")
set(KORVEL_INTL_SERVER "intl.korvel.example:443" CACHE STRING "Account server of the international edition")
set(KORVEL_INTL_ADDRESS_1 "192.0.2.10:443" CACHE STRING "First numeric-address international server, port 443")
set(KORVEL_INTL_ADDRESS_2 "198.51.100.10:443" CACHE STRING "Second numeric-address international server, port 443")
set(KORVEL_INTL_ADDRESS_3 "203.0.113.10:8443" CACHE STRING "Third numeric-address international server, port 8443")
set(KORVEL_SITE "https://korvel.example" CACHE STRING "Product web site, scheme and host only")
set(KORVEL_UPDATE_PUBKEY "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=" CACHE STRING
    "Ed25519 public key that verifies update manifests: base64 of its 32 bytes, 44 characters. The default is the published key of RFC 8032, section 7.1, test 1, whose private half everybody knows: for development only")

if(NOT KORVEL_EDITION MATCHES "^(cn|intl)$")
    message(FATAL_ERROR "KORVEL_EDITION is '${KORVEL_EDITION}'; it must be cn or intl")
endif()
string(LENGTH "${KORVEL_UPDATE_PUBKEY}" KORVEL_UPDATE_PUBKEY_LENGTH)
if(NOT KORVEL_UPDATE_PUBKEY_LENGTH EQUAL 44)
    message(FATAL_ERROR "KORVEL_UPDATE_PUBKEY must have 44 characters, not ${KORVEL_UPDATE_PUBKEY_LENGTH}")
endif()
