#!/usr/bin/env bash
# felthawk-calc --batch end to end: a million random tables (pre-flop, flop,
# turn and river shapes, random seats) through one process, timed.
set -euo pipefail
build="${1:-build}"
count="${2:-1000000}"
tables="$(mktemp)"
trap 'rm -f "$tables"' EXIT

python3 - "$count" > "$tables" <<'PY'
import random, sys
random.seed(7)
deck = [r + s for r in "23456789TJQKA" for s in "SHCD"]
seats = "HFE"
for _ in range(int(sys.argv[1])):
    known = random.choice((2, 5, 6, 7))
    cards = random.sample(deck, known) + [""] * (7 - known)
    row = [random.choice(seats) for _ in range(10)]
    row[random.randrange(10)] = "M"
    print(",".join(cards), "".join(row))
PY

start=$(date +%s.%N)
"$build/app/felthawk-calc" --batch < "$tables" > /dev/null
end=$(date +%s.%N)
python3 -c "import sys; n, t = int(sys.argv[1]), float(sys.argv[3]) - float(sys.argv[2]); print(f'felthawk-calc --batch: {n} tables in {t:.2f} s, {n / t:,.0f} tables/s')" "$count" "$start" "$end"
