#!/usr/bin/env bash
# Builds the Debian package from a finished build folder, checks it the way
# the archive tools would, and unpacks it into a throw-away root.
#   unpack_package.sh <build folder> <source folder> <work folder>
# The package goes to <work folder>/package, its contents to <work folder>/root.
set -euo pipefail

build="$1"
source="$2"
work="$3"
rm -rf "$work"
mkdir -p "$work/package" "$work/root"

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/package" >"$work/cpack.log" 2>&1 ||
    { cat "$work/cpack.log" >&2; fail "cpack could not build the package"; }
packages=("$work"/package/felthawk_*.deb)
[[ ${#packages[@]} -eq 1 && -f "${packages[0]}" ]] || fail "expected one felthawk_*.deb, got: ${packages[*]}"
deb="${packages[0]}"

# Every dependency that dpkg-shlibdeps found is a package this machine has,
# since the programs run here; the Qt libraries must be among them.
depends="$(dpkg-deb --field "$deb" Depends)"
[[ "$depends" == *libqt6widgets6* ]] || fail "Depends lacks the Qt widgets library: '$depends'"
IFS=',' read -ra groups <<<"$depends"
for group in "${groups[@]}"; do
    satisfied=no
    IFS='|' read -ra choices <<<"$group"
    for choice in "${choices[@]}"; do
        name="$(awk '{print $1}' <<<"$choice")"
        if [[ "$(dpkg-query -W -f='${Status}' "$name" 2>/dev/null)" == "install ok installed" ]]; then
            satisfied=yes
        fi
    done
    [[ $satisfied == yes ]] || fail "dependency '$group' names no installed package"
done

lintian --fail-on error --suppress-tags-from-file /dev/null "$deb" >"$work/lintian.log" 2>&1 ||
    { cat "$work/lintian.log" >&2; fail "lintian reports errors"; }

dpkg-deb --extract "$deb" "$work/root"
usr="$work/root/usr"
desktop-file-validate "$usr"/share/applications/*.desktop || fail "desktop-file-validate"
appstreamcli validate --no-net "$usr"/share/metainfo/*.metainfo.xml >"$work/appstream.log" 2>&1 ||
    { cat "$work/appstream.log" >&2; fail "appstreamcli validate"; }

# The installed programs must not lean on the source tree.
if grep -rlF "$source" "$usr/bin"; then
    fail "the programs above name the source folder $source"
fi
echo "unpacked $(basename "$deb") into $work/root"
