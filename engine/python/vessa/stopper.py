"""How the user's frames are made to raise once the watchdog stops a run.

Whatever the user's code catches, it must not run on: every line and every
instruction of the user's frames raises, from the moment of the stop until the
engine releases it, so a handler that catches the stop raises again at its
first instruction, and the stop climbs out frame by frame. It is never raised
in the engine's frames nor in Python's library: they finish what they are
doing, and the stop comes at the next instruction of the user's code.

With the compiled helper, a C trace function does this (native.guard); it is
put on the running thread from the watchdog's thread, and CPython keeps a C
trace function when it raises.

In pure Python, CPython takes a trace function away once it raises, so each
user frame gets a tracer object of its own: the tracer raises, CPython drops
it, and its __del__ (run at once: nothing else holds it) gives the frame a new
one and the thread its trace function back, before the user's handler runs.
Another thread can't set a trace function, so the stop reaches the running
thread through a signal handler (_thread.interrupt_main), which Python runs
between two instructions of the main thread: the pure-Python stop needs the
user's code to run on the main thread. A stop asked for in the running thread
itself (where no watchdog thread can be started, the user's lines read the
clock) puts the tracers on at once.
"""

import _thread
import signal
import sys
import threading

from . import native, trust

# Bound now: the user's code may change what the modules hold while it runs.
_settrace, _interrupt_main, _is_instance = sys.settrace, _thread.interrupt_main, isinstance
_getframe, _get_ident = sys._getframe, _thread.get_ident


def create():
    """The stopper of this process: the compiled one where it is built."""
    global _python_stopper
    if native.guard is not None:
        return NativeStopper(native.guard, trust.judges()[1])
    if _python_stopper is None:
        _python_stopper = PythonStopper(trust.judges()[1])
    return _python_stopper


class NativeStopper:
    def __init__(self, guard, is_users):
        self._guard = guard
        self._is_users = is_users

    @staticmethod
    def can_stop(thread_id):
        return True

    def prepare(self):
        """Nothing to set up: the trace function is put on from outside."""

    def stop(self, thread_id, exception_type, message):
        self._guard.stop_thread(thread_id, exception_type, message, self._is_users)

    def repeat(self):
        """A C trace function stays: nothing to do again."""

    def release(self):
        self._guard.release()


class _Tracer:
    """The local trace function of one user frame during a stop."""

    __slots__ = ("_stop",)

    def __init__(self, stop):
        self._stop = stop

    def __call__(self, frame, event, arg):
        stop = self._stop
        if stop.active and event in ("line", "opcode") and (frame.f_lineno or 0) > 0:
            # Never at an instruction without a line (a handler's set-up): the
            # user is told the line. The traceback keeps this frame: without
            # `self` in it, the tracer dies as CPython drops it, and __del__
            # puts a new one in place.
            del self
            stop.raised_in = frame
            raise stop.exception()
        return self

    def __del__(self):
        if self._stop.active:
            self._stop.rearm()


class PythonStopper:
    """One per process: the signal handler is the process's."""

    SIGNAL = signal.SIGUSR2

    def __init__(self, is_users):
        self._is_users = is_users
        self.active = False
        self._exception = None
        self.raised_in = None       # the frame the last stop was raised in

    @staticmethod
    def can_stop(thread_id):
        return thread_id == threading.main_thread().ident

    def prepare(self):
        """In the main thread, before a run: the handler is ours."""
        if signal.getsignal(self.SIGNAL) != self._on_signal:
            signal.signal(self.SIGNAL, self._on_signal)

    def stop(self, thread_id, exception_type, message):
        self._exception = (exception_type, message)
        self.active = True
        if thread_id == _get_ident():
            self._trace_all(_getframe(1))
        else:
            self.repeat()

    def repeat(self):
        """Asks the main thread again, should a tracer have been lost."""
        _interrupt_main(self.SIGNAL)

    def release(self):
        self.active = False
        self._exception = None
        self.raised_in = None

    def exception(self):
        exception_type, message = self._exception
        return exception_type(message)

    def _on_signal(self, signum, frame):
        if self.active:
            self._trace_all(frame)

    def _trace_all(self, frame):
        """The thread's trace function, and a tracer on each user frame from frame out."""
        _settrace(self._on_call)
        while frame is not None:
            self._trace(frame)
            frame = frame.f_back

    def rearm(self):
        """The thread's trace function and the last frame's tracer, back."""
        _settrace(self._on_call)
        if self.raised_in is not None:
            self._trace(self.raised_in)

    def _trace(self, frame):
        if self._is_users(frame.f_code) and not _is_instance(frame.f_trace, _Tracer):
            frame.f_trace = _Tracer(self)
            frame.f_trace_opcodes = True

    def _on_call(self, frame, event, arg):
        if self.active and self._is_users(frame.f_code):
            frame.f_trace_opcodes = True
            return _Tracer(self)
        return None


_python_stopper = None
