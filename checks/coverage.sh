# holds: nothing; tells which lines and branches of the library the unit tests run, folder by folder
# packages: clang-14 libclang-rt-14-dev llvm-14 g++ cmake ninja-build ccache libgtest-dev libcli11-dev nlohmann-json3-dev libjpeg62-turbo-dev python3
# minutes: 60

. checks/common.sh

tree=build/coverage
library=$tree/lib/libvantor.so
profile=$tree/tests.profdata

build coverage
rm -rf "$tree/profiles" "$tree/report"
ctest --preset coverage
llvm-profdata-14 merge -sparse "$tree"/profiles/*.profraw -o "$profile"

# Only of what the library has: other functions of a test program may be called the same.
llvm-cov-14 show -format=html -show-branches=count -output-dir="$tree/report" -instr-profile="$profile" "$library"
llvm-cov-14 export -summary-only -instr-profile="$profile" "$library" >"$tree/summary.json"
python3 checks/coverage_table.py "$tree/summary.json"
echo "each line: $tree/report/index.html"
