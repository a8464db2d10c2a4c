# holds: other programs and this one read and write the same files alike (tests/interop)
# packages: g++ cmake ninja-build ccache libgtest-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev python3-pydicom dcmtk
# minutes: 20

. checks/common.sh

build release vantor_cli
export VANTOR=$PWD/build/release/bin/vantor

mapfile -t scripts < <(find tests/interop -maxdepth 1 -type f -name '*.py' -executable | sort)
[ ${#scripts[@]} -gt 0 ] || fail "no executable scripts in tests/interop"
failed=()
for script in "${scripts[@]}"; do
    echo "== $script"
    timeout 600 /usr/bin/python3 "$script" || failed+=("$script")
done
[ ${#failed[@]} -eq 0 ] || fail "failed: ${failed[*]}"
