"""Engine time. The engine moves only when Loop() is called; between calls
nothing happens. Tests drive a ManualClock instead of the wall clock.

The watchdog measures user code by the same clock: it waits on the wall clock
for a deadline, and a manual clock tells it each time it is advanced."""

import time

_monotonic = time.monotonic     # bound now: the world's code may change the module


class WallClock:
    def now(self):
        return _monotonic()

    def wait_until(self, deadline, wake):
        """Waits until deadline (None: no deadline) or until wake (an Event) is set."""
        wake.wait(None if deadline is None else max(0.0, deadline - self.now()))

    def on_advance(self, listener):
        """The wall clock moves by itself: whoever waits for it, waits."""


class ManualClock:
    def __init__(self, start=0.0):
        self._now = start
        self._listeners = []

    def now(self):
        return self._now

    def advance(self, seconds):
        self._now += seconds
        for listener in self._listeners:
            listener(self._now)

    def wait_until(self, deadline, wake):
        wake.wait()     # time passes only in advance(), which calls the listeners

    def on_advance(self, listener):
        """listener(now) is called, in the advancing thread, after each advance."""
        self._listeners.append(listener)
