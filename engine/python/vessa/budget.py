"""The memory the user's code may take in one run.

With the compiled helper, Python's allocators count what the run holds and
refuse a block that would take it past the budget (native.guard); the engine
hears of it at the user's next instruction and stops the run even if the code
caught the MemoryError.

In pure Python, the process's address space (RLIMIT_AS) is capped during the
run at what it was plus the budget: the allocation that goes past it fails
with MemoryError. Nothing tells the engine of it, so code that catches that
error and goes on runs until the time limit. Where there is no `resource`
module or no /proc/self/statm (not Linux) there is no budget.
"""

import os

from . import native

try:
    import resource
except ImportError:     # not a Unix
    resource = None

DEFAULT_BYTES = 1 << 30


def create():
    if native.guard is not None:
        return CountedBudget(native.guard)
    return AddressSpaceBudget()


class CountedBudget:
    def __init__(self, guard):
        self._guard = guard

    def begin(self, limit_bytes, on_exceeded):
        self._guard.begin_counting(limit_bytes, on_exceeded)

    def end(self):
        """True when the run asked for more than its budget."""
        return self._guard.end_counting()

    def relax(self):
        """The run is being stopped: the engine has the room it needs for that."""


class AddressSpaceBudget:
    def __init__(self):
        self._saved = None

    def begin(self, limit_bytes, on_exceeded):
        used = _address_space_in_use()
        if resource is None or used is None:
            return
        soft, hard = resource.getrlimit(resource.RLIMIT_AS)
        cap = used + limit_bytes
        if hard != resource.RLIM_INFINITY:
            cap = min(cap, hard)
        if soft != resource.RLIM_INFINITY and soft <= cap:
            return      # the process is held tighter than that already
        resource.setrlimit(resource.RLIMIT_AS, (cap, hard))
        self._saved = (soft, hard)

    def end(self):
        self.relax()
        return False

    def relax(self):
        """The run is being stopped: every thread gets its room back to do it."""
        if self._saved is not None:
            resource.setrlimit(resource.RLIMIT_AS, self._saved)
            self._saved = None


def _address_space_in_use():
    try:
        with open("/proc/self/statm", "rb") as statm:
            pages = int(statm.read().split()[0])
    except (OSError, ValueError, IndexError):
        return None
    return pages * os.sysconf("SC_PAGE_SIZE")
