#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need, and
# the web player's npm packages (engine/web, pinned by its package-lock.json).
# Asks apt and npm only for what is missing, so a second run costs nothing.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
    cmake ninja-build g++ pkg-config clang-format
    qt6-base-dev qt6-base-dev-tools libqt6opengl6-dev libgl-dev libglu1-mesa-dev
    libopenscenegraph-dev openscenegraph fonts-dejavu-core
    pybind11-dev python3.11-dev python3-pytest python3-aiosmtpd openssl
    libgtest-dev libgmock-dev libbenchmark-dev
    libopenal-dev libsndfile1-dev libzip-dev libassimp-dev libcurl4-openssl-dev
    xvfb xauth libgl1-mesa-dri mesa-utils libegl-dev libegl-mesa0 xdotool
    chromium
)
# Node and npm: Debian's, unless the machine has them already.
command -v npm >/dev/null || packages+=(nodejs npm)

missing=()
for p in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
    [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
if [[ ${#missing[@]} -gt 0 ]]; then
    sudo=""
    [[ $(id -u) -eq 0 ]] || sudo="sudo"
    echo "Installing: ${missing[*]}"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# The npm packages, exactly as locked; again only when the lock changed.
web=engine/web
if [[ ! -f $web/node_modules/.package-lock.json || $web/package-lock.json -nt $web/node_modules/.package-lock.json ]]; then
    echo "Installing the web player's npm packages"
    (cd $web && npm ci --no-audit --no-fund --loglevel=error)
fi
