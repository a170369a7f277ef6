#!/usr/bin/env bash
# What the package holds and needs: exactly the installed files of the game
# and the libraries the binary links, named the way Debian names them.
#
#   tests/package_contents.sh PACKAGE_DIR APP_ID
set -uo pipefail
DEB=$(echo "${1:?usage: $0 PACKAGE_DIR APP_ID}"/quorble_*.deb)
APP_ID=${2:?usage: $0 PACKAGE_DIR APP_ID}
[[ -f "$DEB" ]] || { echo "package: no one package in $1" >&2; exit 1; }
status=0
problem() {
  echo "package: $*" >&2
  status=1
}

depends=$(dpkg-deb -f "$DEB" Depends)
echo "Depends: $depends"
for needed in libsdl2 libespeak-ng espeak-ng-data; do
  [[ ",$depends" == *[,\ ]$needed* ]] || problem "Depends does not name $needed"
done
for field in Maintainer Description; do
  [[ -n "$(dpkg-deb -f "$DEB" $field)" ]] || problem "no $field field"
done
[[ "$(dpkg-deb -f "$DEB" Section)" == games ]] || problem "the section is not games"

expected=$(
  printf '%s\n' ./usr/games/quorble \
    ./usr/share/games/quorble/quorble{0..7}.wav ./usr/share/games/quorble/quorble.txt \
    ./usr/share/games/quorble/quorble-strategy.bin \
    "./usr/share/applications/$APP_ID.desktop" \
    "./usr/share/metainfo/$APP_ID.metainfo.xml" \
    "./usr/share/icons/hicolor/scalable/apps/$APP_ID.svg" \
    ./usr/share/man/man6/quorble.6.gz \
    ./usr/share/doc/quorble/{README.md,copyright,changelog.gz} | sort
)
actual=$(dpkg-deb -c "$DEB" | awk '$1 !~ /^d/ { print $6 }' | sort)
if [[ "$actual" != "$expected" ]]; then
  problem "the files differ from what an install holds (< expected, > packaged):"
  diff <(echo "$expected") <(echo "$actual") >&2
fi
exit $status
