#!/bin/sh
# Runs every benchmark of the build folder ($1), keeps each one's whole output
# in $1/bench-logs/, and prints one table of the figures that have a limit.
set -u
build=${1:-build}
logs="$build/bench-logs"
mkdir -p "$logs"
failed=0
for b in "$build"/bin/bench_*; do
    name=$(basename "$b")
    extra=""
    [ "$name" = bench_import ] && extra="--runs 5"
    echo "== $name" >&2
    if ! "$b" $extra > "$logs/$name.log" 2>&1; then
        echo "$name FAILED (see $logs/$name.log)" >&2
        failed=1
    fi
    if [ "$name" = bench_import ]; then
        "$b" --million > "$logs/$name-million.log" 2>&1 || { echo "$name --million FAILED" >&2; failed=1; }
    fi
done
echo
printf '%-16s %-60s %12s %10s  %s\n' "bench" "figure" "value" "limit" "verdict"
for log in "$logs"/*.log; do
    name=$(basename "$log" .log)
    # Lines of the form: <figure> <value> <unit> (limit <n> <unit>) ok|OVER
    sed -n 's/^\(.*[^ ]\)  *\([0-9.][0-9.]*\) \([a-zA-Z]*\) *(limit \([0-9.]*\) [a-zA-Z]*) \(ok\|OVER\)$/\1|\2 \3|\4 \3|\5/p' "$log" |
        while IFS='|' read -r figure value limit verdict; do
            printf '%-16s %-60s %12s %10s  %s\n' "$name" "$figure" "$value" "$limit" "$verdict"
        done
done
exit $failed
