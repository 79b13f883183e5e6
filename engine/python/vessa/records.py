"""Difference records: what the engine tells the front end, queued until it polls.

A record is a list whose item 0 is the tag. Items the front end skips are
still present, because it reads later items by position. Object and sound
ids travel as text: the front end builds tree keys from them ("k" + id).
"""

import itertools

# Large output is cut into records of at most this many characters, so that
# no single record forces the front end to copy one enormous string.
MAX_TEXT_PER_RECORD = 32 * 1024

# Output waiting for a flush is capped; a runaway print loop must not fill
# the memory of the process or flood the output pane.
MAX_PENDING_TEXT = 4 * 1024 * 1024


def output(text):
    return ["output", text]


def error(text):
    return ["error", text]


def popup_error(message, detail):
    """detail: the line as text ("-1" when none), or the syntax-error shape."""
    return ["popuperrordialog", message, detail]


def undo_empty_change(empty):
    return ["undoemptychange", "", bool(empty)]


def active_changed(active):
    return ["activechanged", "", bool(active)]


def right_mouse_menu(object_id, name):
    return ["rightmousemenu", str(object_id), name]


def hide_navigator():
    return ["hidenavigator"]


def object_construct(object_id, kind):
    return ["objectconstruct", str(object_id), kind]


def object_parent_change(object_id, old_parent_id, new_parent_id):
    return ["objectparentchange", str(object_id), str(old_parent_id), str(new_parent_id)]


def object_name_change(object_id, old_name, new_name):
    return ["objectnamechange", str(object_id), old_name, new_name]


def object_first_class_or_part_change(object_id, name, first_class):
    return ["objectfirstclassorpartchange", str(object_id), name, "1" if first_class else "0"]


def object_destruct(object_id):
    return ["objectdestruct", str(object_id)]


def object_resurrect(object_id):
    return ["objectresurrect", str(object_id)]


def sound_name_change(sound_id, old_name, new_name):
    return ["soundnamechange", str(sound_id), old_name, new_name]


def scene_add_sound(scene_id, sound_id):
    return ["sceneaddsound", str(scene_id), str(sound_id)]


def scene_remove_sound(scene_id, sound_id):
    return ["sceneremovesound", str(scene_id), str(sound_id)]


class DifferenceQueue:
    """The two streams the front end polls, plus printed text not yet flushed.

    Printed text stays in a buffer until flush(); any other misc record first
    flushes it, so records keep the order in which things happened.
    """

    def __init__(self):
        self._misc = []
        self._tree = []
        self._pending = []      # (kind, text) pieces, kind "output" or "error"
        self._pending_size = 0
        self._dropped = 0

    def write(self, kind, text):
        if not text:
            return
        room = MAX_PENDING_TEXT - self._pending_size
        if len(text) > room:
            self._dropped += len(text) - max(room, 0)
            text = text[:max(room, 0)]
            if not text:
                return
        self._pending_size += len(text)
        self._pending.append((kind, text))

    def flush(self):
        for kind, pieces in itertools.groupby(self._pending, key=lambda piece: piece[0]):
            text = "".join(piece[1] for piece in pieces)
            for start in range(0, len(text), MAX_TEXT_PER_RECORD):
                self._misc.append([kind, text[start:start + MAX_TEXT_PER_RECORD]])
        if self._dropped:
            self._misc.append(error(
                "\n(%d more characters of output were not shown)\n" % self._dropped))
        self._pending = []
        self._pending_size = 0
        self._dropped = 0

    def add_misc(self, record):
        self.flush()
        self._misc.append(record)

    def add_tree(self, record):
        self._tree.append(record)

    def restart_tree(self):
        """Drops the tree records not yet polled: they tell of a world the
        front end has thrown away."""
        self._tree = []

    def poll_misc(self):
        records, self._misc = self._misc, []
        return records

    def poll_tree(self):
        records, self._tree = self._tree, []
        return records
