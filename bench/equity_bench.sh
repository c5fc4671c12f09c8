#!/usr/bin/env bash
# Every equity benchmark in a process of its own, so that each reports its
# own peak resident size.
set -euo pipefail
build="${1:-build}"
bench="$build/bench/felthawk_equity_bench"
for name in $("$bench" --benchmark_list_tests); do
    "$bench" --benchmark_filter="^${name}\$" --benchmark_repetitions=5 \
        --benchmark_report_aggregates_only=true 2>/dev/null | grep -E "_(median)"
done
