#!/bin/sh
# Takes the guide's pictures (home/Help/pictures) from the program itself, on a virtual
# display, driven by the test driver plugin: the first example world on each tab.
#   tools/help_pictures/take_pictures.sh [BUILD_FOLDER]
# Needs a build with the example worlds and the test driver (build/tests/plugins), and
# xvfb-run (its server kept with -noreset). The pictures are committed: run this again when the window changes.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:-$here/../../build}" && pwd)
out="$here/../../home/Help/pictures"
config=$(mktemp -d)
trap 'rm -rf "$config"' EXIT
mkdir -p "$out"
script="wait:1500;menu:Help;choose:View Online Help...;seen:ObjectTree,Bunny;wait:3000"
script="$script;shot:$out/window.png;item:ObjectTree,Bunny;wait:500;shot:$out/objects.png"
script="$script;tab:1;wait:500;shot:$out/animation.png;tab:2;wait:500"
script="$script;shot:$out/events.png;exit"
env QT_QPA_PLATFORM=xcb QT_QPA_GENERIC_PLUGINS=vessatestdriver \
    QT_PLUGIN_PATH="$build/tests/plugins" XDG_CONFIG_HOME="$config" \
    XDG_DATA_HOME="$config/data" ALSOFT_DRIVERS=null VESSA47_DRIVER_SCRIPT="$script" \
    xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" "$build/vessa47"
