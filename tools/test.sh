#!/usr/bin/env bash
# Builds with warnings as errors and runs every test, headless.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/build.sh -DVESSA_WERROR=ON
xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" ctest --test-dir build --output-on-failure -j2
