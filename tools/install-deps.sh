#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need.
# Asks apt only for what is missing, so a second run costs nothing.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config clang-format
    qt6-base-dev qt6-base-dev-tools libqt6opengl6-dev libgl-dev libglu1-mesa-dev
    libopenscenegraph-dev openscenegraph fonts-dejavu-core
    pybind11-dev python3.11-dev python3-pytest python3-aiosmtpd
    libgtest-dev libgmock-dev libbenchmark-dev
    libopenal-dev libsndfile1-dev libzip-dev libassimp-dev libcurl4-openssl-dev
    xvfb xauth libgl1-mesa-dri mesa-utils libegl-dev libegl-mesa0
)

missing=()
for p in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
    [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo=""
[[ $(id -u) -eq 0 ]] || sudo="sudo"
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
