#!/usr/bin/env bash
# Builds the Debian package from a fresh checkout: sets up, builds, and writes
# build/vocabrix_<version>_<arch>.deb (its Depends computed from the binaries by dpkg-shlibdeps).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
# A package of an older version would make ./build/vocabrix_*.deb name two files.
rm -f build/vocabrix_*.deb
cmake --build build --target package
ls build/vocabrix_*.deb
