# holds: the unit tests pass, and no address, leak or undefined-behaviour fault shows
# packages: g++ cmake ninja-build ccache libgtest-dev googletest libcli11-dev nlohmann-json3-dev libjpeg62-turbo-dev
# minutes: 30

. checks/common.sh

build sanitize
ctest --preset sanitize
