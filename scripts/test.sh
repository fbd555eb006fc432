#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite: the QtTest programs through CTest, and a short
# run of every fuzz harness, then the Debian package installed, checked and removed again
# (scripts/check-package.sh). Set VOCABRIX_FUZZ_SECONDS=0 to leave the fuzzing out,
# VOCABRIX_CHECK_PACKAGE=0 the package.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
if [ "${VOCABRIX_FUZZ_SECONDS:-20}" != "0" ]; then
  bash scripts/fuzz.sh "${VOCABRIX_FUZZ_SECONDS:-20}"
fi
cd build
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --timeout 900 -j"$(nproc)"
cd ..
bash scripts/check-package.sh
