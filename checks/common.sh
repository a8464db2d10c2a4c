# What the checks share. To be sourced; the repository's root is the working directory.

set -eu -o pipefail

fail() {
    echo "$*" >&2
    exit 1
}

# Every C++ file of the repository.
cpp_files() {
    find . -mindepth 1 \( -name '.*' -o -path ./build \) -prune -o -type f \( -name '*.cpp' -o -name '*.h' \) -print |
        sort
}

# Configures build/PRESET, from scratch when it was made where the repository lay before: configure PRESET
configure() {
    local cache=build/$1/CMakeCache.txt fresh=()
    if [ -f "$cache" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$cache"; then
        fresh=(--fresh)
    fi
    cmake --preset "$1" "${fresh[@]}"
}

# Brings build/PRESET up to date with the sources: build PRESET [TARGET...]
# One at a time builds; ./vantor takes the same lock.
build() (
    preset=$1
    shift
    exec 8>build/build.lock
    flock 8
    configure "$preset"
    cmake --build "build/$preset" ${1:+--target "$@"}
)

# Where there is such a place. What a program leaves that crashed goes, too.
keep_temporary_files_in_memory() {
    local memory=/dev/shm
    [ -w "$memory" ] || memory=build
    TMPDIR=$(mktemp -d "$(realpath "$memory")/check.XXXXXX")
    export TMPDIR
    trap 'rm -rf "$TMPDIR"' EXIT
}

# A DICOM file that is no work of ours; Debian's python3-pydicom brings it.
foreign_dicom_file() {
    dpkg -L python3-pydicom | grep '/CT_small\.dcm$' || fail "python3-pydicom brings no CT_small.dcm"
}

# Runs a command, a function too, with each of the arguments, as many at once as there are cores, and shows what
# each prints when it has ended. Fails at the end when one failed, and says which: each_at_once COMMAND ARGUMENT...
each_at_once() {
    local command=$1 folder
    shift
    folder=$(mktemp -d)
    export -f "$command" 2>/dev/null || true
    printf '%s\0' "$@" | xargs -0 -P "$CMAKE_BUILD_PARALLEL_LEVEL" -I{} bash -c '
        log=$(mktemp -p "$1")
        "$2" "$3" >"$log" 2>&1 || echo "$3" >>"$1/failed"
        flock "$1" sh -c "echo \"== \$1\"; cat \"\$2\"" show "$3" "$log"' each "$folder" "$command" {}
    local failed=
    [ ! -e "$folder/failed" ] || failed=$(tr '\n' ' ' <"$folder/failed")
    rm -rf "$folder"
    [ -z "$failed" ] || fail "failed: $failed"
}
