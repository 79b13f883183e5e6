#!/usr/bin/env bash
# Builds with warnings as errors and runs every test, headless; then builds
# the readers of files users did not write once more, alone and instrumented
# with AddressSanitizer and UndefinedBehaviorSanitizer, and runs their tests.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/build.sh -DVESSA_WERROR=ON
xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" ctest --test-dir build --output-on-failure -j2
cmake -S . -B build-asan -G Ninja -DVESSA_READERS_ONLY=ON -DVESSA_WERROR=ON >/dev/null
cmake --build build-asan
ctest --test-dir build-asan --output-on-failure -j2
