# holds: no fuzz target crashes, hangs or leaks within CHECK_FUZZ_SECONDS (20, at most 60) from its seeds on
# packages: clang-14 libclang-rt-14-dev llvm-14 g++ cmake ninja-build ccache libgtest-dev libjpeg62-turbo-dev
# minutes: 40

. checks/common.sh

programs=build/fuzz/fuzz
seeds=build/fuzz/seeds
export findings=build/fuzz/findings
export seconds=${CHECK_FUZZ_SECONDS:-20}
[ "$seconds" -le 60 ] || seconds=60
export ASAN_SYMBOLIZER_PATH=/usr/bin/llvm-symbolizer-14

# Runs one target on its seeds: its last words, or all of them when it found a fault.
fuzz() {
    local name log
    name=$(basename "$1")
    log=build/logs/fuzz-$name.log
    if "$1" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$findings/$name-" "$2/$name" >"$log" 2>&1; then
        echo "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs"
    else
        tail -n 100 "$log"
        echo "$name FAILED; again with $1 and the file named above"
        return 1
    fi
}
export -f fuzz

build fuzz
rm -rf "$seeds"
mkdir -p "$findings" build/logs
"$programs/fuzz_seeds" "$seeds"

mapfile -t targets < <(find "$programs" -maxdepth 1 -type f -executable ! -name fuzz_seeds | sort)
[ ${#targets[@]} -gt 0 ] || fail "no fuzz targets in $programs"
for target in "${targets[@]}"; do
    [ -n "$(ls -A "$seeds/$(basename "$target")" 2>/dev/null)" ] || fail "fuzz_seeds writes none for $target"
done
printf '%s\0' "${targets[@]}" | xargs -0 -P "$CMAKE_BUILD_PARALLEL_LEVEL" -I{} bash -c 'fuzz {} '"$seeds"
