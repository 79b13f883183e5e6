"""Engine time. The engine moves only when Loop() is called; between calls
nothing happens. Tests drive a ManualClock instead of the wall clock."""

import heapq
import itertools
import time


class WallClock:
    def now(self):
        return time.monotonic()


class ManualClock:
    def __init__(self, start=0.0):
        self._now = start

    def now(self):
        return self._now

    def advance(self, seconds):
        self._now += seconds


class Scheduler:
    """Calls due at a time of the clock, run in time order by run_due()."""

    def __init__(self, clock):
        self.clock = clock
        self._queue = []
        self._order = itertools.count()

    def call_at(self, when, function):
        heapq.heappush(self._queue, (when, next(self._order), function))

    def call_later(self, delay, function):
        self.call_at(self.clock.now() + delay, function)

    def run_due(self):
        now = self.clock.now()
        while self._queue and self._queue[0][0] <= now:
            function = heapq.heappop(self._queue)[2]
            function()

    def seconds_to_next(self):
        """Seconds until the next call is due, or None when none is scheduled."""
        if not self._queue:
            return None
        return max(self._queue[0][0] - self.clock.now(), 0.0)

    def clear(self):
        self._queue = []
