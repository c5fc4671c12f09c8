#!/usr/bin/env bash
# Installs the Debian packages of scripts/debian-packages.txt that are missing.
# Runs as root on a fresh machine; uses sudo otherwise when there is one.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
mapfile -t wanted < <(grep -v '^\s*#' "$here/debian-packages.txt" | grep -v '^\s*$')

missing=()
for package in "${wanted[@]}"; do
    status="$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)"
    [[ "$status" == "install ok installed" ]] || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
if [[ $(id -u) -ne 0 ]]; then
    command -v sudo >/dev/null || { echo "Run as root to install: ${missing[*]}" >&2; exit 1; }
    sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
