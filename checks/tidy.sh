# holds: clang-tidy finds none of the faults that .clang-tidy lists
# packages: g++ cmake ninja-build ccache clang-tidy-14 libgtest-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev
# minutes: 20

. checks/common.sh

folders='platform|host|dicom|records|directory|media|wrappers|sr|cli'
report=build/logs/tidy-report.log
status=0

configure release
run-clang-tidy-14 -quiet -p build/release "^$PWD/($folders)/" >"$report" 2>&1 || status=$?

# The report without its colours, and without the lines that come for every file.
sed -i 's/\x1b\[[0-9;]*m//g' "$report"
grep -vE '^clang-tidy-14 |^[0-9]+ warnings? (generated|treated)|^$' "$report" || true
files=$(grep -c '^clang-tidy-14 ' "$report") || fail "no files were looked at"
echo "$files files"
exit $status
