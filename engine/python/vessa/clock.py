"""Engine time. The engine moves only when Loop() is called; between calls
nothing happens. Tests drive a ManualClock instead of the wall clock."""

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
