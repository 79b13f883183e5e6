"""The compiled helper `vessa._guard` (engine/bindings/guard_module.cpp): a
stop the user's code can't catch, and a memory budget counted in Python's
allocators. None where it isn't built (a plain source tree, a browser); the
engine then does both in pure Python, with the limits its README tells."""

try:
    from . import _guard as guard
except ImportError:
    guard = None
