# holds: no fuzz target crashes, hangs or leaks within CHECK_FUZZ_SECONDS (20, at most 60) from its seeds on
# long: the targets share MINUTES of all cores, and go on from what earlier ones found (build/corpora)
# packages: clang-14 libclang-rt-14-dev llvm-14 g++ cmake ninja-build ccache libgtest-dev libjpeg62-turbo-dev
# minutes: 40

. checks/common.sh

programs=build/fuzz/fuzz
seeds=build/fuzz/seeds
corpora=build/corpora
export findings=build/fuzz/findings
export seconds=${CHECK_FUZZ_SECONDS:-20}
[ "$seconds" -le 60 ] || seconds=60
export is_long=
[ "${CHECK_LONG_MINUTES:-0}" -eq 0 ] || is_long=1
export ASAN_SYMBOLIZER_PATH=/usr/bin/llvm-symbolizer-14

# Inputs are small: an operation that asks for so much memory was told a size that no input backs.
export limits="-rss_limit_mb=2048 -malloc_limit_mb=256 -timeout=10"
# In hours, some other program has the machine for ten seconds now and then.
[ -z "$is_long" ] || limits="${limits/timeout=10/timeout=60} -report_slow_units=60"

# Runs one target, which keeps new inputs in the first folder: its last words, or all of them when it found a
# fault, and a long run ends with that. fuzz TARGET FOLDER...
fuzz() {
    local name log
    name=$(basename "$1")
    log=build/logs/fuzz-$name.log
    [ ! -e "$findings/stop" ] || return 0
    if "$1" -max_total_time="$seconds" $limits -stop_file="$findings/stop" -print_final_stats=1 \
        -artifact_prefix="$findings/$name-" "${@:2}" >"$log" 2>&1; then
        echo "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs"
    else
        [ -z "$is_long" ] || echo "$name" >"$findings/stop"
        tail -n 100 "$log"
        echo "$name FAILED; again with $1 $limits $(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)"
        return 1
    fi
}
export -f fuzz

# The folders of inputs of one target.
folders_of() {
    local name
    name=$(basename "$1")
    if [ -n "$is_long" ]; then
        mkdir -p "$corpora/$name"
        echo -n "$corpora/$name "
    fi
    echo -n "$seeds/$name"
}

build fuzz
rm -rf "$seeds" "$findings/stop"
mkdir -p "$findings" build/logs
"$programs/fuzz_seeds" "$seeds"

mapfile -t targets < <(find "$programs" -maxdepth 1 -type f -executable ! -name fuzz_seeds | sort)
[ ${#targets[@]} -gt 0 ] || fail "no fuzz targets in $programs"
for target in "${targets[@]}"; do
    [ -n "$(ls -A "$seeds/$(basename "$target")" 2>/dev/null)" ] || fail "fuzz_seeds writes none for $target"
done

if [ -n "$is_long" ]; then
    seconds=$((CHECK_LONG_MINUTES * 60 * CMAKE_BUILD_PARALLEL_LEVEL / ${#targets[@]} + 1))
fi

keep_temporary_files_in_memory

for target in "${targets[@]}"; do printf '%s %s\0' "$target" "$(folders_of "$target")"; done |
    xargs -0 -P "$CMAKE_BUILD_PARALLEL_LEVEL" -I{} bash -c 'fuzz {}'
