"""Names that statements written for Python 2 still expect."""

import builtins
import sys


def install():
    # The front end's start-up sends "import __builtin__".
    sys.modules.setdefault("__builtin__", builtins)
