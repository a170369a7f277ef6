#!/usr/bin/env bash
# Installs whichever of the named Debian packages are missing, as root or
# through sudo. At a terminal it first says how many packages that makes
# and how much room they take, and asks whether to go on; elsewhere (CI, a
# script) it goes on by itself. apt's progress is left out; its summary and
# any error are shown.
#
#   tools/install_packages.sh PACKAGE...
set -uo pipefail
missing=()
for package in "$@"; do
  dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
    missing+=("$package")
done
((${#missing[@]})) || exit 0
echo "Missing: ${missing[*]}"
sudo=()
(($(id -u) == 0)) || sudo=(sudo)
apt_get() {
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get "$@" 2>&1 |
    grep --line-buffered -E '^([0-9]+ upgraded|Need to get|After this operation|E:|W:)'
  return "${PIPESTATUS[0]}"
}
apt_get update -qq || exit
if [[ -t 0 ]]; then
  # --assume-no only lists and sizes what would come, and then declines.
  apt_get install --assume-no --no-install-recommends "${missing[@]}"
  read -r -p "Do you want to continue? [Y/n] " answer
  [[ -z "$answer" || "$answer" == [yY]* ]] || { echo "Nothing installed."; exit 1; }
fi
apt_get install -y -q --no-install-recommends "${missing[@]}"
