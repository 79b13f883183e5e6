#!/usr/bin/env bash
# Configures and builds into build/. Extra arguments go to CMake's configure step.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh
cmake -S . -B build -G Ninja "$@" >/dev/null
cmake --build build
