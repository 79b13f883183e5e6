"""The engine's undo stack. Each step is a list of functions that put the
scene back; Push(None, '[') ... Push(None, ']') gathers the changes between
the brackets into one step."""

import contextlib


class UndoStack:
    def __init__(self, on_empty_change):
        """on_empty_change(bool) hears when the stack becomes empty or not."""
        self._steps = []
        self._open = None
        self._depth = 0
        self._quiet = False
        self._tell = on_empty_change

    def push(self, step, bracket=None):
        if bracket == "[":
            self._depth += 1
            if self._open is None:
                self._open = []
        elif bracket == "]":
            self._depth = max(self._depth - 1, 0)
            if self._depth == 0 and self._open is not None:
                group, self._open = self._open, None
                self._add(group)
        elif callable(step) and not self._quiet:
            if self._open is not None:
                self._open.append(step)
            else:
                self._add([step])

    def _add(self, group):
        if not group:
            return
        self._steps.append(group)
        if len(self._steps) == 1:
            self._tell(False)

    def undo(self):
        if not self._steps:
            return
        with self.quiet():
            for step in reversed(self._steps.pop()):
                step()
        if not self._steps:
            self._tell(True)

    @contextlib.contextmanager
    def quiet(self):
        """Changes made inside are not steps of their own (undoing, restoring)."""
        quiet, self._quiet = self._quiet, True
        try:
            yield
        finally:
            self._quiet = quiet

    def mark(self):
        return len(self._steps)

    def truncate(self, mark):
        if len(self._steps) > mark:
            del self._steps[mark:]
            if not self._steps:
                self._tell(True)
