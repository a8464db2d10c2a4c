# holds: other programs and this one find the same in the same files (tests/interop), also with sanitizers
# packages: g++ cmake ninja-build ccache libgtest-dev googletest libbenchmark-dev libcli11-dev nlohmann-json3-dev python3-pydicom dcmtk dicom3tools libgdcm-tools xorriso libjpeg62-turbo-dev ffmpeg python3-numpy python3-pil zsh groff-base
# minutes: 30

. checks/common.sh

# A status that no test expects: a sanitizer's find must not pass for the refusal of a damaged file.
export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:exitcode=99
export LSAN_OPTIONS=exitcode=99
export UBSAN_OPTIONS=print_stacktrace=1:exitcode=99

mapfile -t scripts < <(find tests/interop -maxdepth 1 -type f -name '*.py' -executable | sort)
[ ${#scripts[@]} -gt 0 ] || fail "no executable scripts in tests/interop"

run_script() { timeout 600 /usr/bin/python3 "$1"; }

for preset in release sanitize; do
    build "$preset" vantor_cli directory_tree directory_update
    bin=$PWD/build/$preset/bin
    export VANTOR=$bin/vantor DIRECTORY_TREE=$bin/directory_tree DIRECTORY_UPDATE=$bin/directory_update
    echo "with the programs of $bin"
    each_at_once run_script "${scripts[@]}"
done
