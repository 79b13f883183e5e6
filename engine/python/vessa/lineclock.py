"""How a run reads the clock where no watchdog thread can be started (a
browser's Python): in the user's own lines.

While such a run is in progress, a trace function counts the lines of the
user's frames, and every LINES_BETWEEN_LOOKS of them the deadline is checked;
at it the stop is asked for there and then, in the running thread. The
engine's frames and Python's are not traced, and the trace function is off
outside runs.

CPython takes a trace function away when it raises, and code that meets the
recursion limit meets it in the trace function too. Then no line of ours
runs until the collector's next pass, which a recursion that catches its
RecursionError and goes on makes soon (each error is an object): the reader
is put back on the thread then, and the frames it lost go on counting.
"""

import gc
import sys

# Bound now: the user's code may change what the modules hold while it runs.
_gettrace, _settrace = sys.gettrace, sys.settrace

# The clock is read once in so many lines: in a browser, reading it costs as
# much as tracing some thirty lines.
LINES_BETWEEN_LOOKS = 100
# Before 3.12 Python tells no line of a loop that stays on its line
# (`while True: pass`): there the user's instructions are counted as well.
_LOOPS_TELL_LINES = sys.version_info >= (3, 12)


class Reader:
    """Reads the clock during one run. now() reads the clock, check(now) asks
    for the stop if the deadline has passed, is_users(code) tells the user's
    frames, reading() whether the run still reads the clock (it is not over
    and not stopped). on() and off() begin and end the reading."""

    def __init__(self, now, check, is_users, reading):
        lines_left = LINES_BETWEEN_LOOKS

        def on_line(frame, event, arg):
            nonlocal lines_left
            lines_left -= 1
            if lines_left:
                return on_line
            lines_left = LINES_BETWEEN_LOOKS
            check(now())
            # Once stopped, the frame keeps the tracer that the stopper gave it.
            return on_line if reading() else frame.f_trace

        def on_call(frame, event, arg):
            if not is_users(frame.f_code):
                return None
            if not _LOOPS_TELL_LINES:
                frame.f_trace_opcodes = True
            return on_line

        def renew(phase, info):
            if _gettrace() is not on_call and reading():
                try:
                    _settrace(on_call)
                except RecursionError:  # still too deep: at a later pass
                    pass

        self._on_call, self._renew = on_call, renew

    def on(self):
        _settrace(self._on_call)
        gc.callbacks.append(self._renew)

    def off(self, tracer):
        """Ends the reading; tracer: the trace function to put back."""
        gc.callbacks.remove(self._renew)
        _settrace(tracer)
