#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite: the QtTest programs through CTest, and a short
# run of every fuzz harness. Set VOCABRIX_FUZZ_SECONDS=0 to leave the fuzzing out.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
if [ "${VOCABRIX_FUZZ_SECONDS:-20}" != "0" ]; then
  bash scripts/fuzz.sh "${VOCABRIX_FUZZ_SECONDS:-20}"
fi
cd build
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --timeout 900 -j"$(nproc)"
