"""Printed text of a run goes to the difference queue instead of the console."""

import io
import sys

from .animation import Animation


class _Stream(io.TextIOBase):
    def __init__(self, queue, kind):
        super().__init__()
        self._queue = queue
        self._kind = kind

    @property
    def encoding(self):
        return "utf-8"

    def writable(self):
        return True

    def write(self, text):
        text = str(text)
        self._queue.write(self._kind, text)
        return len(text)


def show(value):
    """How a prompt shows the value of a typed expression, but for an
    animation: a typed command gives one back, and it shows itself by
    running."""
    if not isinstance(value, Animation):
        sys.__displayhook__(value)


class Capture:
    """Context manager: while active, stdout and stderr feed the queue and an
    expression statement compiled in "single" mode prints its value there."""

    def __init__(self, queue):
        self._streams = (_Stream(queue, "output"), _Stream(queue, "error"))
        self._saved = []

    def __enter__(self):
        self._saved.append((sys.stdout, sys.stderr, sys.displayhook))
        sys.stdout, sys.stderr = self._streams
        sys.displayhook = show
        return self

    def __exit__(self, *exc_info):
        sys.stdout, sys.stderr, sys.displayhook = self._saved.pop()
        return False
