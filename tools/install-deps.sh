#!/usr/bin/env bash
# Installs the Debian packages a build needs, when they are missing and we are root.
#   tools/install-deps.sh tour   packages for the library and the tour program
#   tools/install-deps.sh test   the above plus the test suite and its oracles
#   tools/install-deps.sh bench  the above plus the peer libraries the benchmarks compare with
set -euo pipefail
base=(cmake make g++ pkg-config libopenblas-dev)
test=(libgtest-dev python3-numpy librandom123-dev libgsl-dev)
bench=(libbenchmark-dev libsleef-dev libgsl-dev librandom123-dev)
want=("${base[@]}")
case "${1:-tour}" in
  test) want+=("${test[@]}") ;;
  bench) want+=("${test[@]}" "${bench[@]}") ;;
esac
missing=()
for p in "${want[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
if [ "$(id -u)" -ne 0 ]; then
  echo "missing Debian packages: ${missing[*]} (run as root to install them)" >&2
  exit 1
fi
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq "${missing[@]}"
