"""Names that statements written for Python 2 still expect."""

import builtins
import re
import sys

_PRINT_STATEMENT = re.compile(r"^(\s*)print\s+(?!\()(.*)$", re.MULTILINE)
_BACK_QUOTES = re.compile(r"`([^`]*)`")


def install():
    # The front end's start-up sends "import __builtin__".
    sys.modules.setdefault("__builtin__", builtins)


def modernize(text):
    """A Python 2 print statement with back-quotes, as the front end's object
    menu still sends one, rewritten for Python 3. Other text is unchanged."""
    text = _BACK_QUOTES.sub(r"repr(\1)", text)
    return _PRINT_STATEMENT.sub(r"\1print(\2)", text)
