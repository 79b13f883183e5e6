"""Where the program's home folder and the user's desktop are."""

import os
import re

_PACKAGE_DIR = os.path.dirname(os.path.abspath(__file__))


def with_slash(path):
    return path if path.endswith("/") else path + "/"


def home_dir():
    """VESSA47_HOME if set; otherwise the home folder beside the installed
    package (build/python/vessa -> build/home/). Always ends in "/"."""
    path = os.environ.get("VESSA47_HOME") or os.path.join(_PACKAGE_DIR, "..", "..", "home")
    return with_slash(os.path.normpath(os.path.abspath(path)))


def desktop_dir():
    """The XDG desktop folder, else ~/Desktop."""
    home = os.path.expanduser("~")
    return _xdg_desktop(home) or os.path.join(home, "Desktop")


def _xdg_desktop(home):
    if os.environ.get("XDG_DESKTOP_DIR"):
        return os.path.expandvars(os.environ["XDG_DESKTOP_DIR"])
    config = os.environ.get("XDG_CONFIG_HOME") or os.path.join(home, ".config")
    try:
        with open(os.path.join(config, "user-dirs.dirs"), encoding="utf-8") as f:
            text = f.read()
    except OSError:
        return None
    match = re.search(r'^\s*XDG_DESKTOP_DIR\s*=\s*"([^"]*)"', text, re.MULTILINE)
    if not match:
        return None
    return match.group(1).replace("$HOME", home)
