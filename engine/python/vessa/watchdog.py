"""Stops user code that runs too long inside one engine call.

One persistent thread looks every POLL_SECONDS at the run in progress; arming
and disarming a run is a few assignments, so engine calls stay cheap.

How a run is stopped: while user code runs, a global trace function is
installed that does nothing until a stop is requested (new frames get no local
tracer). When the limit passes, the watchdog thread gives every user frame of
the running thread a local tracer with opcode events on. At its next
instruction a user frame raises CodeTookTooLong. That exception derives from
BaseException so `except Exception:` lets it through, and it is only ever
raised inside user frames (frames compiled from one of the user's source
tags), never in the engine's own code.

Python removes the trace function when a tracer raises. User code with a bare
`except:` would then swallow the stop and carry on untraced, so when the
swallowed exception is freed (its __del__ runs in the running thread) it puts
the tracers back, and the next instruction raises again, until the exception
leaves the user's code. A user who keeps the exception object alive inside a
loop defeats this; such code must be stopped by closing the program.

Blocking calls (time.sleep, input) are not interrupted. Where no thread can be
started (a browser build of Python) the watchdog is off.
"""

import sys
import time

try:
    import threading
except ImportError:     # a Python built without thread support
    threading = None

POLL_SECONDS = 0.1
DEFAULT_SECONDS = 5.0


class CodeTookTooLong(BaseException):
    """Raised in user code that ran longer than the watchdog's limit."""

    watchdog = None

    def __del__(self):
        if self.watchdog is not None:
            self.watchdog.rearm_after_swallow()


class _Run:
    __slots__ = ("thread_id", "deadline", "previous_tracer")

    def __init__(self, thread_id, deadline, previous_tracer):
        self.thread_id = thread_id
        self.deadline = deadline
        self.previous_tracer = previous_tracer


class Watchdog:
    def __init__(self, is_user_code, seconds=DEFAULT_SECONDS):
        """is_user_code(code) tells whether a code object is the user's."""
        self.seconds = seconds
        self._is_user_code = is_user_code
        self._run = None
        self._stopping = False
        self._lock = threading.Lock() if threading else None
        self._closed = None
        self._thread = None
        self._start_thread()

    @property
    def enabled(self):
        return self._thread is not None

    def message(self):
        return "Your code took too long (more than %g seconds) and was stopped" % self.seconds

    # -- the running thread -------------------------------------------------

    def __enter__(self):
        if self.enabled and self._run is None:
            self._run = _Run(threading.get_ident(), time.monotonic() + self.seconds,
                             sys.gettrace())
            sys.settrace(self._on_call)
            return True
        return False    # off, or nested inside a run that is already guarded

    def __exit__(self, *exc_info):
        run = self._run
        if run is None or run.thread_id != threading.get_ident():
            return False
        with self._lock:
            self._run = None
            self._stopping = False
        sys.settrace(run.previous_tracer)
        return False

    def rearm_after_swallow(self):
        run = self._run
        if self._stopping and run is not None and run.thread_id == threading.get_ident():
            sys.settrace(self._on_call)
            self._trap_user_frames(sys._getframe(1))

    def _on_call(self, frame, event, arg):
        if self._stopping and self._is_user_code(frame.f_code):
            frame.f_trace_opcodes = True
            return self._on_event
        return None

    def _on_event(self, frame, event, arg):
        if self._stopping:
            # No local names the exception: the traceback keeps this frame,
            # and a cycle would delay the __del__ that re-arms the stop.
            raise self._stop_exception()
        return self._on_event

    def _stop_exception(self):
        stop = CodeTookTooLong(self.message())
        stop.watchdog = self
        return stop

    def _trap_user_frames(self, frame):
        while frame is not None:
            if self._is_user_code(frame.f_code):
                frame.f_trace = self._on_event
                frame.f_trace_opcodes = True
            frame = frame.f_back

    # -- the watchdog thread ------------------------------------------------

    def _start_thread(self):
        if threading is None:
            return
        self._closed = threading.Event()
        thread = threading.Thread(target=self._watch, name="vessa-watchdog", daemon=True)
        try:
            thread.start()
        except RuntimeError:    # no threads on this platform
            return
        self._thread = thread

    def _watch(self):
        while not self._closed.wait(POLL_SECONDS):
            with self._lock:
                run = self._run
                if run is None or self._stopping or time.monotonic() < run.deadline:
                    continue
                self._stopping = True
                self._trap_user_frames(sys._current_frames().get(run.thread_id))

    def close(self):
        if self._thread is not None:
            self._closed.set()
            self._thread.join(1.0)
            self._thread = None
