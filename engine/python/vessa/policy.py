"""What the user's code may do in a world the user does not trust.

A world from someone else runs its hand-written Python when the user presses
Perform. Unless the user trusts the world, that code may not start other
programs, use the network, reach code outside Python (ctypes, cffi, extension
modules from outside Python's library), look inside the running program (gc,
frames, code objects, audit hooks), change the current folder or the
environment, change files outside the world's folder and the program's
temporary folder, or read files outside those, the program's home folder and
its installed folders (Python's library among them).

A CPython audit hook (sys.addaudithook: code can't take it away) checks these
whenever the user's code is running: when a frame of code that was not read
from the engine's or Python's files (trust.py) stands above a frame of the
engine. So what the engine does for a line of the world (a gallery object
added, a model file read) is checked too, and what the front end asks of the
engine is not. Starting programs, the network and native code are refused
during any of the engine's work while the policy is on: the engine needs none
of them, so code that changed the engine's objects can't make it do them
later. Paths are taken with every link followed and every ".." resolved.

The hook keeps its state in its own closure and uses only what it took when it
was made, so code that rebinds names in modules can't change its answers. The
engine changes its state through audit events ("vessa.policy", configure()),
which the hook refuses while the user's code runs.

The import guard (the __import__ of the user's builtins) asks the hook about
every module the user's code imports, loaded or not, and hands it a copy of
builtins for `import builtins`. The user's code reaches the real builtins only
by digging, and whatever it changed there is put back after each run
(restore_builtins).

A refusal raises NotAllowed, a Mistake: the user is told the line and why.
"""

import builtins
import operator
import os
import stat
import sys
import types

from . import trust
from . import mistakes
from .mistakes import Mistake

CONFIGURE = "vessa.policy"
IMPORT = "vessa.import"


class NotAllowed(Mistake):
    """The policy refused what the user's code asked for. The audit hook makes
    it without running __init__ (no method of the class may run there), so
    it carries its finished message as its argument."""

    def __str__(self):
        return str(self.args[0])


# Why a module is refused, by what it is for.
_PROGRAMS = "it starts other programs"
_NETWORK = "it uses the network"
_NATIVE = "it runs code outside Python"
_INSIDE = "it looks inside the running program"
REFUSED_MODULES = {
    **dict.fromkeys(("subprocess", "_posixsubprocess", "multiprocessing", "_multiprocessing",
                     "pty", "concurrent"), _PROGRAMS),
    **dict.fromkeys(("socket", "_socket", "ssl", "_ssl", "select", "selectors", "asyncio",
                     "http", "urllib", "ftplib", "smtplib", "poplib", "imaplib", "nntplib",
                     "telnetlib", "socketserver", "xmlrpc", "webbrowser"), _NETWORK),
    **dict.fromkeys(("ctypes", "_ctypes", "cffi", "_cffi_backend", "mmap"), _NATIVE),
    **dict.fromkeys(("gc", "inspect", "importlib", "_imp", "_frozen_importlib",
                     "_frozen_importlib_external", "zipimport", "runpy", "pkgutil", "code",
                     "codeop", "marshal", "threading", "_thread", "signal", "_signal",
                     "faulthandler", "atexit", "resource", "tracemalloc", "_testcapi",
                     "_testinternalcapi", "_xxsubinterpreters", "vessa"), _INSIDE),
}

_PROGRAM_EVENTS = frozenset({"os.system", "os.exec", "os.posix_spawn", "os.spawn", "os.fork",
                             "os.forkpty", "os.kill", "os.killpg", "subprocess.Popen",
                             "pty.spawn", "os.startfile"})
_NETWORK_FAMILIES = ("socket.", "urllib.", "ftplib.", "smtplib.", "http.client.", "imaplib.",
                     "poplib.", "nntplib.", "telnetlib.", "webbrowser.")
# Events that change files: where their paths are, and their folder descriptors.
# (A link's target is checked from the folder the link is made in.)
_WRITE_EVENTS = {
    "os.remove": ((0,), (1,)), "os.rmdir": ((0,), (1,)), "os.mkdir": ((0,), (2,)),
    "os.truncate": ((0,), ()), "os.chmod": ((0,), (2,)), "os.chown": ((0,), (3,)),
    "os.utime": ((0,), (3,)), "os.chflags": ((0,), ()), "os.lchflags": ((0,), ()),
    "os.setxattr": ((0,), ()), "os.removexattr": ((0,), ()), "shutil.rmtree": ((0,), (1,)),
    "os.rename": ((0, 1), (2, 3)), "os.link": ((0, 1), (2, 3)), "os.symlink": ((1,), (2,)),
    "sqlite3.connect": ((0,), ()),
}
_READ_EVENTS = frozenset({"os.listdir", "os.scandir", "os.listxattr", "os.getxattr"})
_INSIDE_EVENTS = frozenset({"sys.addaudithook", "sys._current_frames", "sys._current_exceptions",
                            "gc.get_objects", "gc.get_referrers", "gc.get_referents"})
# Fine for the engine, and for Python's library when the engine asked for it.
# (sys.settrace is not among them: CPython itself takes away a trace function
# that raised, announced as if from the frame it was tracing.)
_INSIDE_WHEN_CALLED = frozenset({"sys._getframe", "object.__getattr__", "object.__setattr__",
                                 "object.__delattr__", "code.__new__", "marshal.loads",
                                 "marshal.load"})
_WRITE_FLAGS = os.O_WRONLY | os.O_RDWR | os.O_APPEND | os.O_CREAT | os.O_TRUNC


def _message(what):
    return mistakes.text("not_allowed", what=what)


def _make_hook(is_engine, is_users, program_dirs, library_dirs, search_dirs):
    """The audit hook. Every name it uses is bound here, when it is made, and it
    runs no code of the user's own: what the user gave (a path, a module's
    name) is read as plain text first. search_dirs: where imports look, which
    the import machinery lists."""
    getframe, get_ident = sys._getframe, __import__("_thread").get_ident
    getcwd, lstat, readlink = os.getcwd, os.lstat, os.readlink
    is_link, sep, fs_encoding = stat.S_ISLNK, os.sep, sys.getfilesystemencoding()
    str_type, bytes_type, int_type, bool_type = str, bytes, int, bool
    type_of, length, is_instance, as_tuple, any_of = type, len, isinstance, tuple, any
    plain_str, plain_bytes, new_exception = str.__add__, bytes.__add__, Exception.__new__
    refused_modules, message = dict(REFUSED_MODULES), _message
    policed = frozenset(_PROGRAM_EVENTS | set(_WRITE_EVENTS) | _READ_EVENTS | _INSIDE_EVENTS
                        | _INSIDE_WHEN_CALLED
                        | {CONFIGURE, IMPORT, "import", "open", "compile", "os.chdir",
                           "os.putenv", "os.unsetenv"})
    own_questions = frozenset({"sys._getframe", "object.__getattr__"})
    network_families, write_events = _NETWORK_FAMILIES, dict(_WRITE_EVENTS)
    always_families = _NETWORK_FAMILIES + ("ctypes.",)
    program_events, read_events, write_flags = _PROGRAM_EVENTS, _READ_EVENTS, _WRITE_FLAGS
    inside_events, inside_when_called = _INSIDE_EVENTS, _INSIDE_WHEN_CALLED
    code_dirs, front_end_sources = program_dirs + library_dirs, trust.FRONT_END_SOURCES
    trusted, readable, writable, folders = False, code_dirs, (), {}
    busy = set()    # threads asking their own questions of frames: not policed

    def refused(what):
        """The refusal, made without any method its class may since have been given."""
        return new_exception(NotAllowed, message(what))

    def text(value):
        """value as a plain str, or None; no method of the value's own runs.
        (Python converts paths before it announces them; the few it passes
        as given, objects of their own, are refused.)"""
        kind = type_of(value)
        if kind is str_type:
            return value
        if is_instance(value, str_type):
            return plain_str("", value)
        if is_instance(value, bytes_type):
            return plain_bytes(b"", value).decode(fs_encoding, "surrogateescape")
        return None

    def resolve(path):
        """The path from the root, every link followed and ".." resolved; None
        for what is no path, or links that go round."""
        if path is None:
            return None
        pending = (path if path.startswith(sep) else getcwd() + sep + path).split(sep)
        pending.reverse()
        resolved, links = "", 0
        while pending:
            part = pending.pop()
            if part in ("", "."):
                continue
            if part == "..":
                resolved = resolved[:resolved.rfind(sep)]
                continue
            candidate = resolved + sep + part
            try:
                is_a_link = is_link(lstat(candidate).st_mode)
            except (OSError, ValueError):
                is_a_link = False   # not there (yet): nothing to follow
            if not is_a_link:
                resolved = candidate
                continue
            links += 1
            if links > 40:
                return None
            target = readlink(candidate)
            if target.startswith(sep):
                resolved = ""
            target = target.split(sep)
            target.reverse()
            pending.extend(target)
        return resolved or sep

    def configure(key, value):
        nonlocal trusted, readable, writable
        if key == "trusted":
            trusted = bool_type(value)
            return
        folders[key] = None if value is None else resolve(text(value))
        kept = [folders.get(name) for name in ("world", "temp", "home")]
        writable = as_tuple(p + sep for p in kept[:2] if p is not None)
        readable = as_tuple(p + sep for p in kept if p is not None) + code_dirs

    def running(frame):
        """(the user's code is running, the engine is working) at frame."""
        users, engine = False, False
        while frame is not None:
            code = frame.f_code
            if is_engine(code):
                if users:
                    return True, True
                engine = True
            elif is_users(code):
                users = True
            frame = frame.f_back
        return False, engine

    def asked_by_users(frame):
        """Whether the first frame that is not Python's library is the user's:
        the library does what the frame that called it asked."""
        while frame is not None:
            code = frame.f_code     # read once: reading it is announced to this hook
            if is_engine(code):
                return False
            if is_users(code):
                return True
            frame = frame.f_back
        return False

    def check_path(path, write, listing=False):
        if type_of(path) is int_type:
            raise refused("use files or folders by number")
        given = text("." if path is None else path)
        where = resolve(given)
        if where is None:
            raise refused(
                "use %s as a file name" % ("a name that is not text" if given is None
                                           else "a path whose links go round"))
        if write:
            if not (where + sep).startswith(writable):
                raise refused(
                    "change %s: it may only change files in the world's folder and the "
                    "program's temporary folder" % where)
        elif not (where + sep).startswith(readable) and not (
                listing and where + sep in search_dirs):
            raise refused(
                "read %s: it may only read the world's folder and the program's own folders"
                % where)

    def no_folder_number(args, indexes):
        for index in indexes:   # -1 or None: no folder descriptor
            if index < length(args) and args[index] is not None and not (
                    type_of(args[index]) is int_type and args[index] == -1):
                raise refused("use files or folders by number")

    def check_users(event, args, caller):
        """What the user's code may not do itself, or have the engine do for it."""
        if event == "open":
            path, mode, flags = args
            mode = text(mode) or ""
            write = (any_of(c in mode for c in "wax+")
                     or (type_of(flags) is int_type and bool_type(flags & write_flags)))
            check_path(path, write)
        elif event in write_events:
            paths, dir_fds = write_events[event]
            no_folder_number(args, dir_fds)
            for index in paths:
                check_path(args[index], True)
            if event == "os.symlink":
                target, link = text(args[0]), text(args[1]) or ""
                if target is not None and not target.startswith(sep):
                    target = link.rpartition(sep)[0] + sep + target
                check_path(target, True)
        elif event in read_events:
            check_path(args[0] if args else None, False, listing=True)
        elif event == IMPORT or (event == "import" and asked_by_users(caller)):
            name = text(args[0]) or ""
            reason = refused_modules.get(name.partition(".")[0])
            if reason is not None:
                raise refused("use %s: %s" % (name, reason))
        elif event == "os.chdir":
            raise refused("change the current folder")
        elif event in ("os.putenv", "os.unsetenv"):
            raise refused("change the environment")
        elif event == "compile":
            raise refused("pretend to be the program's own code")
        elif event in inside_events or (event in inside_when_called and asked_by_users(caller)):
            raise refused("look inside the running program (%s)" % event)

    def check_always(event, args):
        """What no code may do while the engine works: it never needs it."""
        if event in program_events:
            raise refused("start other programs")
        if event.startswith(network_families):
            raise refused("use the network")
        if event.startswith("ctypes."):
            raise refused("use ctypes: it runs code outside Python")
        if event == "import":
            path = text(args[1])    # an extension module's file; None for Python's own
            if path is not None and not path.startswith(code_dirs):
                raise refused("load %s: it runs code outside Python" % path)

    def forged(filename):
        filename = text(filename)
        return filename is not None and (filename in front_end_sources
                                         or filename.startswith(code_dirs + ("<frozen ",)))

    def worth_asking(event, args):
        """Cheap questions first: most imports and compiles need no look at the stack."""
        if event == "compile":
            return forged(args[1])
        if event == "import":
            name = text(args[0]) or ""
            return name.partition(".")[0] in refused_modules or args[1] is not None
        return True

    def hook(event, args):
        if type_of(event) is not str_type:
            event = text(event)
        if event not in policed and not event.startswith(always_families):
            return      # most events: as little as can be
        if not worth_asking(event, args):
            return
        me = get_ident()
        nested = me in busy
        if nested and event in own_questions:
            return
        busy.add(me)
        try:
            caller = getframe(1)
            if event in inside_when_called and not asked_by_users(caller):
                return      # the engine, or Python's library for it: often, and fine
            users, engine = running(caller)
            if event == CONFIGURE:
                if users:
                    raise refused("change what it may do")
                configure(*args)
            elif not trusted:
                if users or engine:
                    check_always(event, args)
                if users:
                    check_users(event, args, caller)
        finally:
            if not nested:
                busy.discard(me)

    return hook


_installed = False


def install():
    """Adds the hook, once for the process; the policy is on until configured."""
    global _installed
    if not _installed:
        is_engine, is_users = trust.judges()
        program = (os.path.join(os.path.dirname(trust.ENGINE_DIR.rstrip(os.sep)), ""),)
        search = frozenset(os.path.join(os.path.realpath(p), "") for p in sys.path
                           if isinstance(p, str))
        sys.addaudithook(_make_hook(is_engine, is_users, program, trust.library_dirs(), search))
        _installed = True


def configure(**settings):
    """trusted (True lifts the policy), world, home, temp: folders or None."""
    for key, value in settings.items():
        sys.audit(CONFIGURE, key, value)


# -- the user's builtins ------------------------------------------------------

_REAL_IMPORT = builtins.__import__


def _guarded_import(name, globals=None, locals=None, fromlist=(), level=0):
    if level == 0:
        sys.audit(IMPORT, name)
        if name in ("builtins", "__builtin__"):
            module = types.ModuleType("builtins")
            vars(module).update((globals or {}).get("__builtins__", {}))
            return module
    return _REAL_IMPORT(name, globals, locals, fromlist, level)


def _make_restorer():
    """restore_builtins(), with every name it uses bound now: it runs right
    after the user's code, which may have changed them."""
    current = vars(builtins)
    real = list(current.items())
    names, values = [name for name, _ in real], [value for _, value in real]
    lookup, each, every, same = current.get, map, all, operator.is_

    def restore_builtins():
        """Puts back what the user's code changed or took away in the real
        builtins. Names it added stay: they hide none the engine uses (its
        modules define or import every name they use), and pybind11 keeps
        its own there."""
        if every(each(same, each(lookup, names), values)):
            return
        for name, value in real:
            if lookup(name) is not value:
                current[name] = value

    return restore_builtins, dict(real)


restore_builtins, _REAL_BUILTINS = _make_restorer()


def user_builtins():
    """Builtins for the user's namespace: a copy the user's code may change, whose
    __import__ asks the policy first."""
    names = dict(_REAL_BUILTINS)
    names["__import__"] = _guarded_import
    return names


class AnnouncedFiles:
    """A backend whose reads and writes of files are announced as "open"
    events, as Python's open() announces its own: the compiled backend reads
    and writes in C++, where the hook would not see them."""

    def __init__(self, backend):
        self._backend = backend

    def __getattr__(self, name):
        value = getattr(self._backend, name)
        if callable(value):
            setattr(self, name, value)  # found once, then as fast as the backend's own
        return value

    def load_model(self, path):
        sys.audit("open", path, "r", 0)
        return self._backend.load_model(path)

    def describe_model(self, path):
        sys.audit("open", path, "r", 0)
        return self._backend.describe_model(path)

    def load_sound(self, path):
        sys.audit("open", path, "r", 0)
        return self._backend.load_sound(path)

    def play_sound(self, path, volume=1.0):
        sys.audit("open", path, "r", 0)
        return self._backend.play_sound(path, volume)

    def store_model(self, path, parts):
        sys.audit("open", path, "w", 0)
        return self._backend.store_model(path, parts)

    def save_picture(self, path, width=0, height=0):
        sys.audit("open", path, "w", 0)
        return self._backend.save_picture(path, width, height)

    def set_style(self, node_id, style, value):
        if style == "model" and value and not str(value).startswith("text:"):
            sys.audit("open", str(value).rpartition("#")[0] or str(value), "r", 0)
        return self._backend.set_style(node_id, style, value)
