# holds: the unit tests pass as Windows programs, and the installed vantor.exe works, under Wine
# packages: g++ g++-mingw-w64-x86-64-posix cmake ninja-build ccache wine64 libgtest-dev googletest libcli11-dev nlohmann-json3-dev python3-pydicom
# minutes: 40

. checks/common.sh

# The loader itself: Debian's `wine` command asks for 32-bit support, which nothing here needs.
export wine=/usr/lib/wine/wine64
export WINEPREFIX=$PWD/build/windows/wine
export WINEDEBUG=-all
export WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe='
unset DISPLAY WAYLAND_DISPLAY

start_wine() {
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    trap stop_wine EXIT
    timeout 300 $wine wineboot --init
}

stop_wine() { /usr/lib/wine/wineserver64 -k || true; }

# Every test program is one Windows process.
run_test_program() { timeout 900 "$wine" "$1" --gtest_brief=1; }

run_test_programs() {
    local programs expected
    mapfile -t programs < <(find build/windows/tests -maxdepth 1 -name '*_tests.exe' | sort)
    expected=$(ctest --test-dir build/windows --show-only | sed -n 's/^Total Tests: //p')
    [ "${#programs[@]}" = "$expected" ] || fail "${#programs[@]} programs for $expected tests: ${programs[*]}"
    each_at_once run_test_program "${programs[@]}"
}

# The program beside its DLL, in a folder of its own with nothing else of the build.
run_installed_program() {
    local prefix=build/windows/installed
    rm -rf "$prefix"
    cmake --install build/windows --prefix "$prefix"
    $wine "$prefix/bin/vantor.exe" info "$(foreign_dicom_file)" | tee build/windows/info.txt
    grep -q 1.3.6.1.4.1.5962 build/windows/info.txt || fail "vantor.exe does not show the file's UIDs"
}

build windows
start_wine
run_test_programs
run_installed_program
