"""Scene backups: the scene and the script as they stood, dated, in the
world's Backups folder beside the program's own script backups.

    Scene_as_of_5Mar2024_142501.py          the scene, as World_Scene.py
    Scene_as_of_5Mar2024_142501_Script.txt  the script text

The scene names files as the world's own scene file does (the world's folder
is the one that holds the Backups folder), so copied back as World_Scene.py
it is the world's scene again. An object added since the last save names its
model file by its whole path, which no scene file may do: that line has to
wait for the file to be copied in by a save.
"""

import datetime
import os

from . import scenefile

PREFIX = "Scene_as_of_"
SCRIPT_SUFFIX = "_Script.txt"
# English, whatever the language of the machine: the program's script
# backups are named so, and the two kinds sort side by side.
MONTHS = ("Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec")


def stamp(moment):
    """The date as the backups' names have it: day without a leading zero,
    the month's three letters, year, then hours, minutes and seconds."""
    return "%d%s%04d_%02d%02d%02d" % (moment.day, MONTHS[moment.month - 1], moment.year,
                                      moment.hour, moment.minute, moment.second)


def back_up(scene, sounds, folder, script_text, now=datetime.datetime.now):
    """Writes the backup into folder, made if need be; None, or why not."""
    world = os.path.dirname(os.path.abspath(folder))
    base = os.path.join(folder, PREFIX + stamp(now()))
    try:
        os.makedirs(folder, exist_ok=True)
        _write(base + ".py", scenefile.text_of(scene, world, sounds.rows(world)))
        _write(base + SCRIPT_SUFFIX, script_text)
    except (OSError, ValueError) as exc:
        return "BackupScene: no backup could be written to %s: %s" % (
            folder, getattr(exc, "strerror", None) or exc)
    return None


def _write(path, text):
    with open(path, "w", encoding="utf-8", newline="") as f:
        f.write(text)
