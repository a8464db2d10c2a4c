# holds: the unit tests pass as the library is shipped, optimised
# packages: g++ cmake ninja-build ccache libgtest-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev libjpeg62-turbo-dev
# minutes: 30

. checks/common.sh

build release
ctest --preset release
