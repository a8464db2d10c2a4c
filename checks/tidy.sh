# holds: clang compiles the library and the program, and clang-tidy finds none of the faults in .clang-tidy
# packages: g++ cmake ninja-build ccache clang-14 clang-tidy-14 libcli11-dev nlohmann-json3-dev libjpeg62-turbo-dev
# minutes: 40

. checks/common.sh

# Only files that changed are looked at again; other rules are a reason to look at all.
rules=build/tidy/rules
cmp -s .clang-tidy "$rules" || rm -rf build/tidy
configure tidy
cp .clang-tidy "$rules"
cmake --build build/tidy -- -k 0
