#!/usr/bin/env bash
# Builds the libFuzzer harnesses with clang (address and undefined-behaviour sanitizers) and runs
# each for a short, fixed time over its seed folder. Any crash, sanitizer report, leak or hang
# fails the run. Usage: scripts/fuzz.sh [SECONDS_PER_HARNESS]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-20}"
generator=()
command -v ninja >/dev/null 2>&1 && generator=(-G Ninja)
if [ ! -f build-fuzz/CMakeCache.txt ]; then
  CC=clang CXX=clang++ cmake -S . -B build-fuzz "${generator[@]}" -DVOCABRIX_FUZZ=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build build-fuzz -j"$(nproc)"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
for harness in fuzz/fuzz_*.cpp; do
  name=$(basename "$harness" .cpp)
  seeds="fuzz/seeds/${name#fuzz_}"
  mkdir -p "$work/$name"
  [ -d "$seeds" ] && cp -r "$seeds"/. "$work/$name"/
  echo "fuzz: $name for ${seconds}s"
  if ! ( cd "$work" && "$OLDPWD/build-fuzz/fuzz/$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
         -print_final_stats=0 "$name" > "$name.log" 2>&1 ); then
    echo "fuzz: $name FAILED"; tail -40 "$work/$name.log"; status=1
  fi
done
exit $status
