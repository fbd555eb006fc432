#!/usr/bin/env bash
# Sets up, builds and starts Vocabrix. Arguments are handed to the application.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
exec ./build/bin/vocabrix "$@"
