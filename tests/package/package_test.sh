#!/bin/bash
# Builds the Debian package from the build tree, checks what it holds, runs lintian on it
# and runs the programs from a `dpkg-deb -x` unpacked copy with the source and build
# trees hidden, so nothing can quietly come from them.
# usage: package_test.sh BUILD_DIR SOURCE_DIR VERSION
set -euo pipefail
build=$1 source=$2 version=$3
work=$(mktemp -d "${TMPDIR:-/tmp}/krldv-package.XXXXXX")
trap 'rm -rf "$work"' EXIT
fail() { echo "package_test: $*" >&2; exit 1; }

(cd "$build" && cpack -G DEB -B "$work/out" >"$work/cpack.log" 2>&1) || { cat "$work/cpack.log"; fail "cpack failed"; }
arch=$(dpkg --print-architecture)
multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH 2>/dev/null || gcc -print-multiarch)
deb=$work/out/krldv_${version}_${arch}.deb
[ -f "$deb" ] || fail "no $deb (made: $(ls "$work/out"))"

dpkg-deb -c "$deb" | awk '{ print $6 }' | sed 's|^\./|/|' >"$work/contents"
for path in /usr/bin/krldv /usr/bin/korel5 "/usr/lib/$multiarch/krldv/libkrldv.so" \
    /usr/share/krldv/host-strings.txt /usr/share/krldv/devices/flash-spi.json \
    /usr/share/krldv/option-pages/device-options.json /usr/share/krldv/demo/demo.bin \
    /usr/share/applications/korel5.desktop /usr/share/icons/hicolor/scalable/apps/korel5.svg \
    /usr/share/mime/packages/krldv.xml /usr/share/bash-completion/completions/krldv \
    /usr/share/man/man1/krldv.1.gz /usr/share/man/man1/korel5.1.gz \
    /usr/share/doc/krldv/copyright /usr/share/doc/krldv/changelog.gz; do
    grep -qx "$path" "$work/contents" || fail "the package lacks $path"
done
if grep -q "$build\|$source" "$work/contents"; then fail "the package holds build paths"; fi
depends=$(dpkg-deb -f "$deb" Depends)
case $depends in *libqt6widgets6*) ;; *) fail "Depends lacks Qt: $depends" ;; esac
[ "$(dpkg-deb -f "$deb" Recommends)" = flashrom ] || fail "flashrom is not recommended"

if command -v lintian >/dev/null; then
    lintian --fail-on error "$deb" >"$work/lintian" 2>&1 ||
        { cat "$work/lintian"; fail "lintian found errors"; }
    [ -s "$work/lintian" ] && { echo "lintian (no errors):"; cat "$work/lintian"; }
else
    echo "lintian is not installed: not run"
fi

root=$work/root
dpkg-deb -x "$deb" "$root"
cp "$root/usr/share/krldv/demo/demo.bin" "$work/demo.bin"
cat >"$work/run.sh" <<RUN
set -eu
cd "$work"
export QT_QPA_PLATFORM=offscreen
unset KRLDV_DATA_DIR
[ "\$("$root/usr/bin/krldv" --version)" = "krldv $version" ]
"$root/usr/bin/krldv" convert demo.bin demo.hex --to intel
"$root/usr/bin/krldv" convert demo.hex back.bin
cmp demo.bin back.bin
"$root/usr/bin/krldv" devices | grep -q AT24C02
"$root/usr/bin/korel5" --screenshot shot.png demo.hex
[ -s shot.png ]
# The completion offers the commands and the formats krldv itself lists.
PATH="$root/usr/bin:\$PATH" bash -c '. "$root/usr/share/bash-completion/completions/krldv"
    COMP_WORDS=(krldv con); COMP_CWORD=1; _krldv; [ "\${COMPREPLY[*]}" = convert ]
    COMP_WORDS=(krldv convert a.hex --to mot); COMP_CWORD=4; _krldv; [ "\${COMPREPLY[*]}" = motorola ]'
RUN
# Hide the trees behind empty folders when this user may; otherwise run as it is.
if unshare -m -r true 2>/dev/null || { [ "$(id -u)" = 0 ] && unshare -m true 2>/dev/null; }; then
    hide="mount -t tmpfs none '$source'"
    case $build in "$source"/*) ;; *) hide="$hide && mount -t tmpfs none '$build'" ;; esac
    flag=-m; [ "$(id -u)" = 0 ] || flag="-m -r"
    unshare $flag sh -c "$hide && sh '$work/run.sh'" || fail "the unpacked programs failed"
else
    echo "cannot hide the build tree here (no mount namespace): ran in place"
    sh "$work/run.sh" || fail "the unpacked programs failed"
fi
echo "package_test: $(basename "$deb") OK"
