"""Stops the user's code that runs too long or takes too much memory inside one
engine call, so that it is told to the user like any error in their code.

A run is the user's code called by the engine (the CodeRunner enters the
watchdog around it); arming and disarming one is a few assignments, so engine
calls stay cheap. One thread waits for the deadline of the run in progress
(woken by a run only when it waits for none, or for a later one); a
ManualClock instead tells the watchdog each time it is advanced, so a test
knows exactly when the limit passes. Where no thread can be started (a
browser's Python), the user's own lines read the clock (lineclock.py) and ask
for the stop there and then. At the limit the stopper (stopper.py)
makes every line and instruction of the user's frames raise CodeTookTooLong.
Going past the memory budget (budget.py) stops the run the same way, with
CodeTookTooMuchMemory, and a MemoryError that ends a run is told in the same
words.

Both derive from BaseException, so `except Exception:` lets them through, and
whatever else catches them, the next instruction of the user's code raises
again. They are raised only in the user's frames, never in the engine's own
code. While a run is being stopped, the recursion limit has some room more, so
that the tracers never meet it.

Blocking calls (time.sleep, input) are not interrupted: the stop comes when
they return.
"""

import sys
import threading

from . import budget, lineclock, stopper, trust

# Bound now: the user's code may change what the modules hold while it runs.
_gettrace, _settrace = sys.gettrace, sys.settrace
_getrecursionlimit, _setrecursionlimit = sys.getrecursionlimit, sys.setrecursionlimit
_get_ident = threading.get_ident

DEFAULT_SECONDS = 5.0
REPEAT_SECONDS = 0.1        # a pure-Python stop is asked for again this often
RECURSION_HEADROOM = 200
TIME, MEMORY = "time", "memory"
_DECIDING = object()        # the watchdog's thread is choosing its next deadline
MEMORY_MESSAGE = "your code asked for too much memory"


class CodeStopped(BaseException):
    """The engine stopped the user's code; the message says why."""


class CodeTookTooLong(CodeStopped):
    """Raised in user code that ran longer than the watchdog's limit."""


class CodeTookTooMuchMemory(CodeStopped):
    """Raised in user code that asked for more memory than its budget."""


def _first_stop(exc, stop_type):
    """Code that catches a stop is stopped again in its handler; the first stop
    is where the code was when it was stopped: the line the user is told.
    Each stopped run raises a class of its own. None when exc is no stop."""
    if not isinstance(exc, CodeStopped):
        return None
    while type(exc.__context__) is stop_type:
        exc = exc.__context__
    return exc


def _drop_repeated_entries(traceback):
    """CPython notes a frame twice when a Python trace function raises in it."""
    while traceback is not None and traceback.tb_next is not None:
        following = traceback.tb_next
        if (following.tb_frame is traceback.tb_frame
                and following.tb_lasti == traceback.tb_lasti):
            traceback.tb_next = following.tb_next
        else:
            traceback = following


class _Run:
    __slots__ = ("thread_id", "deadline", "counted", "stopping", "stop_type", "tracer",
                 "recursion_limit", "unraisable", "noted", "reader")

    def __init__(self, thread_id, deadline, counted):
        self.thread_id = thread_id
        self.deadline = deadline
        self.counted = counted
        self.stopping = None        # TIME or MEMORY once a stop was asked for
        self.stop_type = None       # the class of its own that the run's stops raise
        self.tracer = _gettrace()
        self.recursion_limit = None
        self.unraisable = None      # Python's hook for errors it can only note
        self.noted = False          # a stop was only noted (in a __del__)
        self.reader = None          # without a watchdog thread: the lines reading the clock


class Watchdog:
    def __init__(self, clock, after_run=None, seconds=DEFAULT_SECONDS,
                 budget_bytes=budget.DEFAULT_BYTES):
        """after_run() is called first thing when the user's code has
        finished, whatever its end. budget_bytes 0 means no memory budget."""
        self.seconds = seconds
        self.budget_bytes = budget_bytes
        self._clock = clock
        self._after_run = after_run
        self._stopper = stopper.create()
        self._budget = budget.create()
        self._run = None
        self._closed = False
        self._waiting_until = None      # the thread's deadline; None: none
        self._thread = None
        self._lock = threading.Lock()
        self._wake = threading.Event()
        self._start_thread()
        # Without a thread, the user's lines read the clock: whose lines they are.
        self._is_users = trust.judges()[1] if self._thread is None else None
        clock.on_advance(self._check)

    def message(self):
        return "Your code took too long (more than %g seconds) and was stopped" % self.seconds

    # -- the running thread -------------------------------------------------

    def __enter__(self):
        if self._run is not None or self._closed:
            return False    # nested inside a run that is already watched, or closed
        thread_id = _get_ident()
        if not self._stopper.can_stop(thread_id):
            return False
        self._stopper.prepare()
        run = _Run(thread_id, self._clock.now() + self.seconds, self.budget_bytes > 0)
        if run.counted:
            self._budget.begin(self.budget_bytes, self._over_budget)
        self._run = run
        if self._is_users is not None:
            run.reader = lineclock.Reader(self._clock.now, self._check, self._is_users,
                                          lambda: self._run is run and run.stopping is None)
            run.reader.on()
            return True
        waiting_until = self._waiting_until
        if waiting_until is None or waiting_until is _DECIDING \
                or waiting_until > run.deadline:
            self._wake.set()    # else the thread wakes at its own time, before this deadline
        return True

    def __exit__(self, exc_type, exc, traceback):
        run = self._run
        if run is None or run.thread_id != _get_ident():
            return False
        if self._after_run is not None:
            self._after_run()
        with self._lock:
            self._run = None
            stopping = run.stopping
        if run.counted:
            self._budget.end()
        if stopping:
            self._stopper.release()
            _setrecursionlimit(run.recursion_limit)
            sys.unraisablehook = run.unraisable
        if run.reader is not None:
            run.reader.off(run.tracer)
        elif stopping:
            _settrace(run.tracer)
        told = self._as_told(run, exc, traceback)
        if told is not exc:
            raise told from None
        return False

    def _as_told(self, run, exc, traceback):
        """What the user is told of a run that ended with exc (None: it didn't fail)."""
        if isinstance(exc, MemoryError):
            return CodeTookTooMuchMemory(MEMORY_MESSAGE).with_traceback(traceback)
        if exc is None and run.noted:
            # Stopped where Python could only note it (a __del__): told all the same.
            return run.stop_type(self.message() if run.stopping == TIME else MEMORY_MESSAGE)
        first = _first_stop(exc, run.stop_type)
        if first is None:
            return exc
        _drop_repeated_entries(first.__traceback__)
        return first

    def _over_budget(self):
        """Called at the next instruction after the budget refused a block."""
        run = self._run
        if run is not None:
            self._request_stop(run, MEMORY)

    # -- deciding and asking for a stop -----------------------------------

    def _check(self, now):
        run = self._run
        if run is not None and run.stopping is None and now >= run.deadline:
            self._request_stop(run, TIME)

    def _request_stop(self, run, reason):
        with self._lock:
            if run is not self._run or run.stopping is not None:
                return
            run.stopping = reason
            if run.counted:
                self._budget.relax()
            run.recursion_limit = _getrecursionlimit()
            _setrecursionlimit(run.recursion_limit + RECURSION_HEADROOM)
            run.unraisable = sys.unraisablehook
            sys.unraisablehook = self._quiet_about_stops(run)
            base, message = ((CodeTookTooLong, self.message()) if reason == TIME
                             else (CodeTookTooMuchMemory, MEMORY_MESSAGE))
            run.stop_type = type(base.__name__, (base,), {"__module__": base.__module__})
            self._stopper.stop(run.thread_id, run.stop_type, message)

    @staticmethod
    def _quiet_about_stops(run):
        """A stop in a __del__ can only be noted: the user hears of the stop
        from the engine, not as an error ignored there."""
        def unraisable(info):
            if isinstance(info.exc_value, CodeStopped):
                run.noted = True
            else:
                run.unraisable(info)
        return unraisable

    # -- the watchdog thread ------------------------------------------------

    def _start_thread(self):
        thread = threading.Thread(target=self._watch, name="vessa-watchdog", daemon=True)
        try:
            thread.start()
        except RuntimeError:    # no threads on this platform: the user's lines look
            return
        self._thread = thread

    def _watch(self):
        while not self._closed:
            try:
                self._watch_once()
            except MemoryError:     # the user's code holds what there was: ask again
                self._wake.wait(REPEAT_SECONDS)

    def _watch_once(self):
        self._wake.clear()
        self._waiting_until = _DECIDING    # a run that starts now wakes it
        run = self._run
        if run is not None and run.stopping is not None:
            if not self._wake.wait(REPEAT_SECONDS) and run is self._run:
                self._stopper.repeat()
        else:
            self._waiting_until = run.deadline if run is not None else None
            self._clock.wait_until(self._waiting_until, self._wake)
            self._check(self._clock.now())

    def close(self):
        if self._thread is not None:
            self._closed = True
            self._wake.set()
            self._thread.join(1.0)
            self._thread = None
