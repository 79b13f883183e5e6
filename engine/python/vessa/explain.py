"""Python's errors told in the world's words.

A line of the world's language (`Bunny.Move(Forward, 1)`, a block, a
response) that fails is told as the world would say it: which name is not
known, what it should have been, and what it may have meant. A line of
hand-written Python keeps Python's own message, with the near name added
where there is one.
"""

import ast
import builtins
import re
import traceback

from . import vocabulary as v
from .animation import Animation
from .commands import COMMAND_NAMES, Commands
from .mistakes import Mistake, nearest, not_a_word, sentence, suggestion
from .namespace import LANGUAGE
from .sounds import Sound

COMMAND, NAME = "command", "name"

# What a line of the world's language calls: a command, a block, or what
# the generator writes for responses.
WORLD_CALLS = frozenset(v.key(name) for name in (
    *COMMAND_NAMES, *LANGUAGE, "addresponse", "removeresponse", "Copy", "Start", "stop"))
_CALL = re.compile(r"^(?:[A-Za-z_]\w*\s*\.\s*)*([A-Za-z_]\w*)\s*\(")
_BLOCK = re.compile(r"^(?:\w+\s*[=:]\s*)?(?:DoInOrder|DoTogether)\s*\($|^\)(?:\.stop\(\))?$",
                    re.IGNORECASE)

# Errors of a world line that are about its values, not about Python.
VALUE_ERRORS = (TypeError, ValueError, ArithmeticError, LookupError)


def is_world_line(line):
    """The line is one of the world's language, as the script tree writes
    it, rather than hand-written Python: a block, or a call of a command
    (or of a name near one: a command misspelt)."""
    line = (line or "").strip().rstrip(",").strip()
    call = _CALL.match(line)
    return bool(_BLOCK.match(line) or (call and nearest(call.group(1), WORLD_CALLS)))


def in_world_words(exc, namespace, tags):
    """exc as the user should hear of it: a Mistake with exc's traceback
    when the line that failed is of the world's language; otherwise exc, its
    message made more helpful where it can be."""
    if isinstance(exc, Mistake) or not isinstance(exc, Exception):
        return exc
    line = exc.text if isinstance(exc, SyntaxError) else _failed_line(exc, tags)
    if isinstance(exc, AttributeError):
        told = _engine_attribute(exc)
    elif is_world_line(line):
        told = _world_mistake(exc, namespace, line)
    else:
        told = _python_error(exc, namespace)
    return exc if told is None else told.with_traceback(exc.__traceback__)


def _failed_line(exc, tags):
    frames = [f for f in traceback.extract_tb(exc.__traceback__) if f.filename in tags]
    return frames[-1].line if frames else ""


def _world_mistake(exc, namespace, line):
    if isinstance(exc, NameError) and exc.name:
        return _unknown_name(exc.name, _expected_kind(line, exc.name), _world_names(namespace))
    if isinstance(exc, SyntaxError):
        return Mistake("cant_read", reason=sentence(exc.msg))
    if isinstance(exc, VALUE_ERRORS):
        return Mistake("cant_do", reason=sentence(str(exc)))
    return None


def _python_error(exc, namespace):
    if isinstance(exc, NameError) and exc.name:
        hint = suggestion(exc.name, list(_world_names(namespace)) + dir(builtins))
        return NameError(sentence(str(exc)) + hint, name=exc.name) if hint else None
    return None


def _engine_attribute(exc):
    """A command that an animation, a sound, a word or `Vessa` lacks, told
    by what it is to the world: the name of its class means nothing to
    anyone, hand-written line or not."""
    obj = getattr(exc, "obj", None)
    if type(obj).__module__.partition(".")[0] != __name__.partition(".")[0] or not exc.name:
        return None
    among = [a for a in dir(obj) if not a.startswith("_") and callable(getattr(obj, a, None))]
    if isinstance(obj, Animation):
        return Mistake("no_animation_command", name=exc.name, among=among)
    called = obj if isinstance(obj, v.Word) else getattr(obj, "name", None)
    if not isinstance(called, str):
        return None
    return Mistake("no_command_of", object=called, name=exc.name, among=among)


def _world_names(namespace):
    """{name: kind} of the names that the world's code finds."""
    kinds = {}
    for name, value in namespace.items():
        if name.startswith("_"):
            continue
        if isinstance(value, v.Word):
            kinds[name] = value.kind
        elif isinstance(value, Commands):
            kinds[name] = v.OBJECT
        elif isinstance(value, Sound):
            kinds[name] = v.SOUND
        else:
            kinds[name] = COMMAND if name in LANGUAGE else NAME
    return kinds


def _unknown_name(name, kind, known):
    """The mistake of writing name where a value of kind (None: not known)
    stands; known: {name: kind} of the world's names."""
    if kind is None:
        near = nearest(name, known)
        kind = known[near] if near else NAME
    same_kind = [known_name for known_name, k in known.items() if k == kind]
    if kind == v.OBJECT:
        return Mistake("no_object", name=name, among=same_kind)
    if kind == v.SOUND:
        return Mistake("no_sound", name=name, among=same_kind)
    if kind == COMMAND:
        return Mistake("no_command", name=name, among=same_kind)
    if kind in v.KIND_NAMES:
        return not_a_word(name, kind)
    return Mistake("unknown_name", name=name, among=same_kind)


def _expected_kind(line, name):
    """What the line needs where it has name: an object before a command,
    a command, or the kind of a command's value or option; None when the
    line doesn't say."""
    try:
        tree = ast.parse(line.strip().rstrip(","))
    except SyntaxError:
        return None
    for node in ast.walk(tree):
        if not isinstance(node, ast.Call):
            continue
        func = node.func
        if _names(func, name):
            return COMMAND
        if isinstance(func, ast.Attribute) and _names(_head(func.value), name):
            return v.OBJECT
        command = func.attr if isinstance(func, ast.Attribute) else getattr(func, "id", "")
        kinds = _value_kinds(command)
        for value, kind in zip(node.args, kinds):
            if _names(value, name):
                return kind
        for option in node.keywords:
            if _names(option.value, name):
                return v.OPTION_KINDS.get(option.arg)
    return None


def _names(node, name):
    return isinstance(node, ast.Name) and node.id == name


def _head(node):
    while isinstance(node, ast.Attribute):
        node = node.value
    return node


def _value_kinds(command):
    for known, kinds in v.VALUE_KINDS.items():
        if v.key(known) == v.key(command):
            return kinds
    return ()
