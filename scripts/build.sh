#!/usr/bin/env bash
# Configures and builds everything (application, command line, tools, tests, benchmarks) in build/.
set -euo pipefail
cd "$(dirname "$0")/.."
generator=()
command -v ninja >/dev/null 2>&1 && generator=(-G Ninja)
if [ ! -f build/CMakeCache.txt ]; then
  cmake -S . -B build "${generator[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build build -j"$(nproc)"
