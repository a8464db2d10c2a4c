# holds: every C++ file is laid out as .clang-format says
# packages: clang-format-14
# minutes: 5

. checks/common.sh

mapfile -t files < <(cpp_files)
[ ${#files[@]} -gt 0 ] || fail "no C++ files found"
clang-format-14 --dry-run -Werror "${files[@]}" || fail "clang-format-14 -i FILE... mends it"
echo "${#files[@]} files"
