"""The Site Specific menu: commands a school or lab adds to every copy of the
program it installs, as files in the home folder's SiteSpecific folder.

Each file `<Caption>.py` there is one item of the menu, in the order of the
file names (any capitals); an underscore in the name shows as a space
("Connect_to_the_lab.py" is "Connect to the lab"). Its text is the statement the
item runs. Only the folder's own files count: none below it, none that is a
link, none over MAX_BYTES or that is not UTF-8, and at most MAX_ROWS of them.
"""

import os

FOLDER = "SiteSpecific"
MAX_ROWS = 50
MAX_BYTES = 64 * 1024


def _statement(path):
    if os.path.islink(path) or not os.path.isfile(path):
        return None
    if os.path.getsize(path) > MAX_BYTES:
        return None
    try:
        with open(path, "rb") as source:
            return source.read(MAX_BYTES + 1).decode("utf-8")
    except (OSError, UnicodeDecodeError):
        return None


def rows(home):
    """[[caption, statement], ...] for the site files under home; [] without them."""
    folder = os.path.join(str(home), FOLDER)
    try:
        names = sorted(os.listdir(folder), key=str.lower)
    except OSError:
        return []
    found = []
    for name in names:
        stem, extension = os.path.splitext(name)
        if extension.lower() != ".py" or not stem.strip():
            continue
        statement = _statement(os.path.join(folder, name))
        if statement is None:
            continue
        found.append([stem.replace("_", " ").strip(), statement])
        if len(found) == MAX_ROWS:
            break
    return found
