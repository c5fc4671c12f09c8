#!/usr/bin/env bash
# Starts the desktop program from a build folder: scripts/run.sh [build]
set -euo pipefail
build="${1:-build}"
program="$build/app/felthawk"
if [[ ! -x "$program" ]]; then
    echo "run.sh: $program has not been built; run 'make build' first." >&2
    exit 1
fi
if [[ -z "${DISPLAY:-}" && -z "${WAYLAND_DISPLAY:-}" ]]; then
    cat >&2 <<MESSAGE
run.sh: there is no display (DISPLAY is not set), so Felthawk's window cannot open.
Start it on a virtual X screen instead:

    xvfb-run -s "-screen 0 1280x1024x24" $program

or run the whole 'make run' that way:

    xvfb-run -s "-screen 0 1280x1024x24" make run
MESSAGE
    exit 1
fi
exec "$program"
