"""Whose code a frame runs: the engine's, Python's own, or the user's.

The user's code is any code not read from a file of the engine's package or of
Python's library, nor the front end's own statements: what the world's text
compiles to, and whatever that code compiles or imports from elsewhere (a
string given to exec, a module in the world's folder). The watchdog raises
only in the user's frames, and the policy applies while they run.

The judges are closures over what they need, taken when they are made, so that
code which rebinds names in modules later can't change their answers. They
judge by file name: code the library compiles from a string at run time
(namedtuple, dataclasses) counts as the user's, so the engine makes none.
"""

import os
import site
import sysconfig
import tempfile

ENGINE_DIR = os.path.join(os.path.dirname(os.path.abspath(__file__)), "")
# The source tags of the front end's own statements (its start-up, its tools).
FRONT_END_SOURCES = frozenset({"<Init>", "<Tool>"})


def library_dirs():
    """Folders of Python's own library and of the packages installed for it."""
    scheme = sysconfig.get_paths()
    paths = {scheme.get(key) for key in ("stdlib", "platstdlib", "purelib", "platlib")}
    paths.add(os.path.dirname(os.__file__))
    # os may be frozen; tempfile is read from where the library really is,
    # which in a browser is a zip archive.
    paths.add(os.path.dirname(tempfile.__file__))
    paths.update(site.getsitepackages() if hasattr(site, "getsitepackages") else ())
    return _both_spellings(p for p in paths if p)


def _both_spellings(paths):
    """Each folder as written and with its links resolved, ending in a separator."""
    found = set()
    for path in paths:
        found.add(os.path.join(os.path.abspath(path), ""))
        found.add(os.path.join(os.path.realpath(path), ""))
    return tuple(sorted(found))


def judges():
    """(is_engine(code), is_users(code)): the engine's own code, and code that
    is neither the engine's, the front end's statements nor Python's."""
    engine_dirs = _both_spellings([ENGINE_DIR])
    trusted = engine_dirs + library_dirs() + ("<frozen ",)
    verdicts = dict.fromkeys(FRONT_END_SOURCES, False)

    def is_engine(code):
        return code.co_filename.startswith(engine_dirs)

    def is_users(code):
        name = code.co_filename
        verdict = verdicts.get(name)
        if verdict is None:
            verdict = verdicts[name] = not name.startswith(trusted)
        return verdict

    return is_engine, is_users
