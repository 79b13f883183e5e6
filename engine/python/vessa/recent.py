"""The recent-files list: rows of (value name, path), newest first.

The front end stores the rows in its settings and hands them back at start-up;
the engine keeps the master list in order while the program runs. Reorder
and delete answer the new list, which the front end shows at once.
"""


def _same_path(a, b):
    return a.lower() == b.lower()


class RecentFiles:
    LIMIT = 9

    def __init__(self):
        self._paths = []

    def add(self, value_name, path):
        """Rows arrive in the stored order, newest first."""
        if path and not any(_same_path(path, p) for p in self._paths):
            self._paths.append(path)
            del self._paths[self.LIMIT:]

    def reorder(self, path):
        """The world at path was just opened or saved: it goes to the top."""
        self.delete(path)
        self._paths.insert(0, path)
        del self._paths[self.LIMIT:]

    def delete(self, path):
        self._paths = [p for p in self._paths if not _same_path(path, p)]

    def rows(self):
        return [["RecentFile%d" % (i + 1), p] for i, p in enumerate(self._paths)]
