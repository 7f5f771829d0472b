# Where this build's servers are. These are example values: an operator sets their own, here or
# with -D on the command line. Every base address ends in a slash.

set(TOLVAN_PATCH_URL "https://patch.tolvan.example/" CACHE STRING "Patch host")
set(TOLVAN_ASSETS_URL "https://assets.tolvan.example/" CACHE STRING "Assets host")
set(TOLVAN_SITE_URL "https://www.tolvan.example/" CACHE STRING "Web site of the game")
set(TOLVAN_PROBE_URL "http://www.example.com/" CACHE STRING
    "A plain-HTTP page of a large public site: tells an offline machine from a server that is down")
set(TOLVAN_HELP_LINK "https://www.tolvan.example" CACHE STRING "HelpLink of Add or remove programs")

configure_file(${PROJECT_SOURCE_DIR}/cmake/deployment_values.h.in
               ${PROJECT_BINARY_DIR}/generated/deployment_values.h @ONLY)
