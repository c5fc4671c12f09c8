#!/usr/bin/env bash
# Starts the program from a build folder.
set -euo pipefail
build="${1:-build}"
exec "$build/app/felthawk-calc" --pretty --cells "AS,KS,QS,JS,2D,," --seats MHHHHHHHHH
