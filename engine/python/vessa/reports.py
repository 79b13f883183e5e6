"""How a failure in code the engine ran is told: to the user or to the front end."""

import linecache
import sys
import traceback
import types

from . import native
from .mistakes import Mistake
from .watchdog import CodeStopped

NO_LINE = "-1"


def remember_source(tag, text):
    """Lets tracebacks show the lines of text that was compiled under tag."""
    lines = text.splitlines(keepends=True)
    linecache.cache[tag] = (len(text), None, lines, tag)


def novice_message(exc):
    """One line a beginner can read: a Mistake's message as it stands, any
    other error as Python names it ("ZeroDivisionError: division by zero")."""
    if isinstance(exc, (CodeStopped, Mistake)):
        return str(exc)
    text = exc.msg if isinstance(exc, SyntaxError) else str(exc)
    name = type(exc).__name__
    return "%s: %s" % (name, text) if text else name


def syntax_detail(exc, tag):
    """The shape the front end reads for a syntax error:
    [message, [file name, line, offset, source line]]."""
    source = (exc.text or "").rstrip("\r\n")
    return [exc.msg or "", [exc.filename or tag, exc.lineno or 0, exc.offset or 0, source]]


def _user_frames(exc, tags):
    return [frame for frame in traceback.extract_tb(exc.__traceback__)
            if frame.filename in tags]


def line_detail(exc, tags):
    """The line, as text, of the innermost frame compiled from one of tags."""
    frames = _user_frames(exc, tags)
    return str(frames[-1].lineno) if frames else NO_LINE


class Place:
    """Where code stands: its source tag, and its line, worked out only when it
    is asked for. Finding the line of an instruction walks the line table of its
    code from the start, and a world's generated text is one long module: asked
    for at every animation it makes, that would grow with the square of its
    length."""

    __slots__ = ("tag", "_code", "_offset")

    def __init__(self, code, offset):
        self.tag, self._code, self._offset = code.co_filename, code, offset

    @property
    def line(self):
        """The line as text; NO_LINE when the instruction has none."""
        for start, end, line in self._code.co_lines():
            if start <= self._offset < end and line is not None:
                return str(line)
        return NO_LINE


def current_place(tags, engine_globals=None):
    """The Place of the innermost frame now running that was compiled from one
    of tags; None when there is none.

    Reading a frame's code is announced to the audit hooks, and the policy's
    then looks at the stack itself. Frames running in engine_globals (ids, as
    engine_globals() answers them) are passed over without that: asked at
    every animation a world makes, it was most of the cost of making one;
    the compiled guard walks the stack without announcing anything."""
    if native.guard is not None:
        found = native.guard.innermost_frame_of(tags)
        return None if found is None else Place(*found)
    engine_globals = engine_globals or {}
    frame = sys._getframe(1)
    while frame is not None:
        if id(frame.f_globals) not in engine_globals:
            code = frame.f_code
            if code.co_filename in tags:
                return Place(code, frame.f_lasti)
        frame = frame.f_back
    return None


def engine_globals():
    """{id: globals} of the engine's modules loaded now, held so that no id is
    reused: no code compiled from the user's text runs in them. Taken before
    any of the user's code has run, so none of its modules is among them."""
    package = __name__.partition(".")[0]
    return {id(vars(module)): vars(module) for name, module in list(sys.modules.items())
            if isinstance(module, types.ModuleType) and isinstance(name, str)
            and name.partition(".")[0] == package}


def made_at(place):
    """The line a traceback would give for where an animation was made, so
    that a reader of the report can tell the generated lines from the
    hand-written ones."""
    return '  File "%s", line %s, where the animation was made\n' % (place.tag, place.line)


def user_traceback(exc, tags):
    """The traceback as the user should see it: only their own lines."""
    if isinstance(exc, SyntaxError) and exc.filename in tags:
        return "".join(traceback.format_exception_only(type(exc), exc))
    frames = _user_frames(exc, tags)
    head = ["Traceback (most recent call last):\n"] if frames else []
    return "".join(head + traceback.format_list(frames) + [novice_message(exc) + "\n"])


def full_traceback(exc):
    return "".join(traceback.format_exception(type(exc), exc, exc.__traceback__))
