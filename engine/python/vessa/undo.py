"""The engine's undo stack. A step is everything one user action changed:
the functions that put it back, run newest first when the step is undone.

Push(None, '[') ... Push(None, ']') gathers the changes between the brackets
into one step, and so does action() around each call of the front end. An
animation made during an action changes the scene later, when it runs; its
changes join the step of the action that made it (joining()), so that one
Undo takes back a destroyed object with all its parts, or a copy together
with the nudge that set it beside its original.
"""

import contextlib

GATHERING, WAITING, STACKED, GONE = "gathering", "waiting", "stacked", "gone"


class Step:
    """The undoers of one action. Its state: gathering while the action goes
    on, waiting when it ended having changed nothing (yet), stacked, or gone
    once undone or dropped."""

    __slots__ = ("undoers", "state")

    def __init__(self, state):
        self.undoers = []
        self.state = state


class UndoStack:
    def __init__(self, on_empty_change):
        """on_empty_change(bool) hears when the stack becomes empty or not."""
        self._steps = []
        self._open = None       # the step the brackets gather into
        self._depth = 0
        self._joined = None     # the step of the animation that is changing things
        self._quiet = False
        self._tell = on_empty_change

    def push(self, step, bracket=None):
        if bracket == "[":
            self._begin()
        elif bracket == "]":
            self._end()
        elif callable(step) and not self._quiet:
            self._record(step)

    def _begin(self):
        self._depth += 1
        if self._open is None:
            self._open = Step(GATHERING)

    def _end(self):
        if self._depth == 0:
            return
        self._depth -= 1
        if self._depth == 0:
            step, self._open = self._open, None
            step.state = WAITING
            if step.undoers:
                self._stack(step)

    def _record(self, undoer):
        step = self._joined or self._open or Step(WAITING)
        step.undoers.append(undoer)
        if step.state == WAITING:
            self._stack(step)

    def _stack(self, step):
        step.state = STACKED
        self._steps.append(step)
        if len(self._steps) == 1:
            self._tell(False)

    @contextlib.contextmanager
    def action(self):
        """What is changed inside is one step (inside brackets, theirs)."""
        self._begin()
        try:
            yield
        finally:
            self._end()

    def current(self):
        """The step of the action going on, or None: what an animation made
        now will join."""
        return self._open

    @contextlib.contextmanager
    def joining(self, step):
        """Changes made inside join step, the step of the action that made an
        animation. Without one, or once it was undone, they are a step of
        their own."""
        if step is None or step.state == GONE:
            with self.action():
                yield
            return
        joined, self._joined = self._joined, step
        try:
            yield
        finally:
            self._joined = joined

    def undo(self):
        if not self._steps:
            return
        step = self._steps.pop()
        step.state = GONE
        with self.quiet():
            for undoer in reversed(step.undoers):
                undoer()
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
            for step in self._steps[mark:]:
                step.state = GONE
            del self._steps[mark:]
            if not self._steps:
                self._tell(True)
