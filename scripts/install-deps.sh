#!/usr/bin/env bash
# Installs the Debian packages that building, testing and benchmarking zevch
# use. Packages already present are left alone; the package lists are
# refreshed only when something has to be installed.
set -euo pipefail

packages=(cmake g++ make pkg-config python3 libgtest-dev libgmock-dev libbenchmark-dev
          libicu-dev libpcre2-dev pcre2-utils)
packages+=("$@")

missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null 2>&1; then as_root=(sudo); else
    echo "zevch: please install as root: apt-get install ${missing[*]}" >&2; exit 1
  fi
fi
echo "zevch: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
