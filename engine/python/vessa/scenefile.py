"""World_Scene.py: the scene of a world folder, one statement per object,
then one per sound.

    Object(kind="camera", name="Camera", parent="Scene", firstclass=True,
           position=(0.0, 1.5, -8.0), ...)
    Sound(name="Pop", file="Pop.wav")

The file looks like Python so that a person can read it, but it is never run:
the reader parses it line by line and accepts only statements of exactly
these forms, with literal values in their ranges, so a world from a stranger
can't execute anything, nor make the reader recurse or grow without end. Parents
come before their children; a parent is named by its full name. Model and
sound files are named by their places in the world's folder, never by a path
that leads out of it: a stranger's world can't reach other files, which a
later save would copy.
"""

import ast
import io
import keyword
import os
import re
import tokenize

from . import geometry as g
from . import models, namespace
from .backend import STYLES as DRAWN
from .scene import DEFAULT_VALUES, STYLE_DEFAULTS

FILE_NAME = "World_Scene.py"
HEADER = "# Vessa47 scene: read by the engine, never run.\r\n"
KINDS = ("scene", "camera", "light", "model")
FORMS = ("Object", "Sound")
STYLE_TYPES = {"visible": bool, "filling": str, "lighting": str, "texture": bool,
               "model": str, "shadow": bool, "vertex_count": int, "face_count": int}

# What a hostile file may not make the reader do: read a file without end,
# make a world that could never be drawn, recurse into nested values.
LARGEST_FILE = 32 * 1024 * 1024     # bytes; a world of the most objects is a few MB
MOST_STATEMENTS = 20000             # objects and sounds
LONGEST_TEXT = 4096                 # characters of one text value
FARTHEST = 1e6                      # meters from the middle, and the largest size
DEEPEST = 2                         # brackets: Object( and a value's (
AT_A_GLANCE = 24                    # brackets and signs a line may have unread
LARGEST_COUNT = 2 ** 31 - 1
# How many numbers each value holds, and the range of each.
VALUE_RANGES = {"position": (3, -FARTHEST, FARTHEST), "orientation": (4, -1.0, 1.0),
                "size": (3, 0.0, FARTHEST), "color": (3, 0.0, 1.0)}
NOT_A_STATEMENT = "each line must be Object(name=value, ...) or Sound(name=..., file=...)"


class SceneFileError(Exception):
    pass


def path_in(folder):
    """The scene file of folder, whatever the case of its name on disk."""
    try:
        for entry in os.listdir(folder):
            if entry.lower() == FILE_NAME.lower():
                return os.path.join(folder, entry)
    except OSError:
        pass
    return os.path.join(folder, FILE_NAME)


# -- writing ------------------------------------------------------------------

def _record(scene, thing):
    """What the scene file says of thing, read from the scene at once."""
    # Straight from the backend: a copy of a big world is taken while the user waits.
    get, get_style, thing_id = scene.backend.get, scene.backend.get_style, thing.id
    styles = {s: get_style(thing_id, s) for s in DRAWN}
    styles["vertex_count"], styles["face_count"] = thing.vertex_count, thing.face_count
    return {"kind": thing.kind, "name": thing.local_name,
            "parent": thing.parent.name if thing.parent else None,
            "firstclass": thing.first_class,
            "values": [get(thing_id, channel) for channel in DEFAULT_VALUES],
            "styles": styles}


def _statement(record, file_name):
    """The line of a record; file_name(model) names a model's file as the
    folder of the scene file knows it."""
    fields = {a: record[a] for a in ("kind", "name", "parent", "firstclass")}
    for (channel, default), value in zip(DEFAULT_VALUES.items(), record["values"]):
        value = tuple(round(x, 9) for x in value)
        if value != default:
            fields[channel] = value
    # values left out are the defaults, which is what the reader assumes
    fields.update({a: value for a, value in record["styles"].items()
                   if value != STYLE_DEFAULTS[a]})
    if "model" in fields:
        fields["model"] = file_name(fields["model"])
    return "Object(%s)\r\n" % ", ".join("%s=%r" % item for item in fields.items())


def _in_family_order(thing):
    yield thing
    for child in thing.children:
        if child.alive:
            yield from _in_family_order(child)


def _sound_lines(sounds):
    return "".join("Sound(name=%r, file=%r)\r\n" % row for row in sounds)


def text_of(scene, folder, sounds=()):
    """The scene file of the world in folder. sounds: (name, file) of each
    sound of the scene, its file named as in the scene file of folder."""
    def file_name(model):
        return models.relative_to(model, folder)
    return (HEADER + "".join(_statement(_record(scene, t), file_name)
                             for t in _in_family_order(scene.root))
            + _sound_lines(sounds))


def write(scene, folder, sounds=(), into=None):
    """Writes the scene file of folder, into folder or, when into is given,
    into that folder under the same name."""
    path = os.path.join(into, FILE_NAME) if into else path_in(folder)
    with open(path, "w", encoding="utf-8", newline="") as f:
        f.write(text_of(scene, folder, sounds))


class Copy:
    """The scene file of a copy of the world in a folder of its own, taken
    from the scene at once and written a part at a time, so that a copy of
    a big world holds up nothing for long. Model and sound files are named
    as they will be called in the copy's folder (files): each (path now,
    name there), a name used once.

    preserved: the world as the handbasket keeps it, from Handbasket.saved(),
    for a copy made while the world may be running."""

    def __init__(self, scene, sounds, preserved=None):
        self._names, self._taken = {}, set()
        if preserved is None:
            self._records = [_record(scene, t) for t in _in_family_order(scene.root)]
            sound_rows = [(s.name, s.path) for s in sounds.in_scene()]
        else:
            things, saved_sounds = preserved
            self._records = _preserved_records(scene, things)
            sound_rows = [(name, s.path) for s, name, in_scene in saved_sounds if in_scene]
        for record in self._records:
            source = models.file_of(record["styles"]["model"])
            if source is not None:
                self._name_of(source)
        self._sounds = [(name, self._name_of(path)) for name, path in sound_rows]
        self._next = 0

    def _name_of(self, path):
        if path not in self._names:
            stem, extension = os.path.splitext(os.path.basename(path))
            name, n = stem + extension, 2
            while name.lower() in self._taken:
                name, n = "%s%d%s" % (stem, n, extension), n + 1
            self._taken.add(name.lower())
            self._names[path] = name
        return self._names[path]

    def files(self):
        return [[path, name] for path, name in self._names.items()]

    def part(self, count):
        """The statements of the next count objects; the first part begins
        with the header, the last ends with the sounds. "" once all is told."""
        if self._next > len(self._records):
            return ""
        start, self._next = self._next, self._next + max(1, int(count))
        text = HEADER if start == 0 else ""
        text += "".join(_statement(r, self._file_name) for r in self._records[start:self._next])
        if self._next >= len(self._records):
            self._next = len(self._records) + 1
            text += _sound_lines(self._sounds)
        return text

    def _file_name(self, model):
        source = models.file_of(model)
        return model if source is None else models.with_file(model, self._names[source])


def _preserved_records(scene, things):
    """Records of the living things the handbasket keeps, parents first."""
    def full_name(thing):
        state = things[thing.id]
        parent = state["parent"]
        if state["first_class"] or parent is None:
            return state["name"]
        return full_name(parent) + "." + state["name"]
    children = {}
    for thing_id in sorted(things):
        parent = things[thing_id]["parent"]
        if things[thing_id]["alive"] and parent is not None:
            children.setdefault(parent.id, []).append(scene.things[thing_id])
    records, waiting = [], [scene.root]
    while waiting:
        thing = waiting.pop()
        state = things[thing.id]
        records.append({"kind": thing.kind, "name": state["name"],
                        "parent": full_name(state["parent"]) if state["parent"] else None,
                        "firstclass": state["first_class"],
                        "values": [state["values"][c] for c in DEFAULT_VALUES],
                        "styles": dict(state["styles"])})
        waiting.extend(reversed(children.get(thing.id, [])))
    return records


# -- reading ------------------------------------------------------------------

def _fail(line, message):
    raise SceneFileError("%s line %d: %s" % (FILE_NAME, line, message))


def _number(node):
    """A number, with one minus sign at most, or None."""
    negative = isinstance(node, ast.UnaryOp) and isinstance(node.op, ast.USub)
    if negative:
        node = node.operand
    if isinstance(node, ast.Constant) and type(node.value) in (int, float):
        return -node.value if negative else node.value
    return None


def _literal(node, line):
    """A text, number, truth value, None, or a tuple of numbers; nothing else."""
    if isinstance(node, ast.Constant) and type(node.value) in (str, int, float, bool, type(None)):
        return node.value
    if isinstance(node, (ast.Tuple, ast.List)):
        numbers = tuple(_number(element) for element in node.elts)
        if None not in numbers:
            return numbers
    value = _number(node)
    if value is None:
        _fail(line, "only plain values may stand here")
    return value


def _fields(line, source):
    """The form (Object or Sound) and the values of the statement on a line."""
    form, fields = _plain_fields(source) or _parsed_fields(line, source)
    for name, value in fields.items():
        if isinstance(value, str) and len(value) > LONGEST_TEXT:
            _fail(line, "%s is longer than %d letters" % (name, LONGEST_TEXT))
    return form, fields


# A line as write() puts it: texts without escapes, numbers as repr() writes
# them, tuples of numbers, True, False and None, one ", " between values. A
# big world is read quickly through these patterns; every other line goes
# through Python's parser and the checks of each of its parts.
_NUMBER = r"-?(?:0|[1-9][0-9]{0,17})(?:\.[0-9]{1,17})?(?:e[-+][0-9]{1,3})?"
_PLAIN_START = re.compile(r"[ \t]*(Object|Sound)\(")
_PLAIN_VALUE = re.compile(
    r"([A-Za-z_][A-Za-z0-9_]*)=(?:'([^'\\\x00-\x1f\x7f]*)'|\(((?:%s, )+%s)\)|(%s)|(True|False|None))"
    r"(, |\)[ \t]*$)" % (_NUMBER, _NUMBER, _NUMBER))
_WORDS = {"True": True, "False": False, "None": None}


def _plain_number(text):
    return float(text) if "." in text or "e" in text else int(text)


def _plain_fields(source):
    """The form and values of a line as write() puts it; None for any other."""
    start = _PLAIN_START.match(source)
    if start is None:
        return None
    fields, at = {}, start.end()
    while True:
        value = _PLAIN_VALUE.match(source, at)
        if value is None:
            return None
        name, text, numbers, number, word, after = value.groups()
        if name in fields or keyword.iskeyword(name):
            return None
        if text is not None:
            fields[name] = text
        elif numbers is not None:
            fields[name] = tuple(_plain_number(n) for n in numbers.split(", "))
        elif number is not None:
            fields[name] = _plain_number(number)
        else:
            fields[name] = _WORDS[word]
        if after != ", ":
            return start.group(1), fields
        at = value.end()


def _parsed_fields(line, source):
    """The form and values of any other line, read by Python's parser."""
    _check_nesting(line, source)
    try:
        body = ast.parse(source.strip(), FILE_NAME).body
    except (SyntaxError, ValueError, RecursionError, MemoryError):
        _fail(line, NOT_A_STATEMENT)
    call = body[0].value if len(body) == 1 and isinstance(body[0], ast.Expr) else None
    if not (isinstance(call, ast.Call) and isinstance(call.func, ast.Name)
            and call.func.id in FORMS and not call.args):
        _fail(line, NOT_A_STATEMENT)
    fields = {}
    for given in call.keywords:
        if given.arg is None or given.arg in fields:
            _fail(line, "each value is given once, by its name")
        fields[given.arg] = _literal(given.value, line)
    return call.func.id, fields


OPENING, CLOSING = {"(", "[", "{"}, {")", "]", "}"}
SIGNS = {"-", "+", "~"}


def _check_nesting(line, source):
    """Refuses values nested in values, and a run of signs before a number,
    before the parser has to follow them down. Most lines are seen at a
    glance; one with many brackets or signs (which a text may hold) is read
    token by token."""
    if sum(source.count(mark) for mark in "([{-+~") <= AT_A_GLANCE:
        return
    depth, signs, before = 0, 0, "("
    try:
        for token in tokenize.generate_tokens(io.StringIO(source).readline):
            if token.type == tokenize.ERRORTOKEN:
                _fail(line, NOT_A_STATEMENT)
            text = token.string if token.type == tokenize.OP else ""
            depth += (text in OPENING) - (text in CLOSING)
            signs = signs + 1 if text in SIGNS and before in OPENING | SIGNS | {",", "="} else 0
            if depth > DEEPEST or signs > 1:
                _fail(line, "values may not be nested, nor have more than one sign")
            if token.type not in (tokenize.NL, tokenize.NEWLINE, tokenize.COMMENT):
                before = text
    except (tokenize.TokenError, SyntaxError):
        _fail(line, NOT_A_STATEMENT)


def _is_name(value):
    return isinstance(value, str) and value.isidentifier() and not keyword.iskeyword(value)


def _is_file_name(value):
    """A file directly in the world's folder."""
    return (isinstance(value, str) and value not in ("", ".", "..")
            and not any(mark in value for mark in "/\\:"))


def _is_path_in_folder(value):
    """A file in the world's folder or a folder in it: "Horse.obj", "Horse/Horse.obj"."""
    return isinstance(value, str) and all(_is_file_name(part) for part in value.split("/"))


def _check_world_name(line, name):
    """A name the world's code knows things by breaks nothing of it."""
    why = namespace.refusal(name)
    if why is not None:
        _fail(line, "%s can't be the name of an object or a sound: %s" % (name, why))


def _checked_sound(line, fields):
    if set(fields) != {"name", "file"}:
        _fail(line, "a sound is Sound(name=..., file=...)")
    if not _is_name(fields["name"]):
        _fail(line, "a sound needs a name made of letters, digits and _")
    _check_world_name(line, fields["name"])
    if not _is_file_name(fields["file"]):
        _fail(line, "a sound's file must be the name of a file in the world's folder")
    return fields["name"], fields["file"]


def _in_range(number, low, high):
    """A number (not a truth value) within its range: never infinity nor not
    a number; a whole number too big for a float compares as it is."""
    return type(number) in (int, float) and low <= number <= high


KNOWN = {"kind", "name", "parent", "firstclass"} | set(DEFAULT_VALUES) | set(STYLE_DEFAULTS)


def _checked(line, fields):
    unknown = fields.keys() - KNOWN
    if unknown:
        _fail(line, "unknown value %s" % sorted(unknown)[0])
    if fields.get("kind") not in KINDS:
        _fail(line, "kind must be one of %s" % ", ".join(KINDS))
    if not _is_name(fields.get("name")):
        _fail(line, "an object needs a name made of letters, digits and _")
    if fields.get("firstclass", True):
        _check_world_name(line, fields["name"])
    if not (fields.get("parent") is None or isinstance(fields["parent"], str)):
        _fail(line, "parent must be the name of an object above it, or None")
    for channel, (count, low, high) in VALUE_RANGES.items():
        value = fields.get(channel, DEFAULT_VALUES[channel])
        if not (isinstance(value, tuple) and len(value) == count
                and all(_in_range(x, low, high) for x in value)):
            _fail(line, "%s must be %d numbers from %g to %g" % (channel, count, low, high))
    if not any(fields.get("orientation", DEFAULT_VALUES["orientation"])):
        _fail(line, "orientation must be a turn: four numbers, not all 0")
    for attribute, kind in STYLE_TYPES.items():
        if attribute in fields and type(fields[attribute]) is not kind:
            _fail(line, "%s must be a %s" % (attribute, kind.__name__))
        if kind is int and not _in_range(fields.get(attribute, 0), 0, LARGEST_COUNT):
            _fail(line, "%s must be a count from 0 to %d" % (attribute, LARGEST_COUNT))
    model_file = models.file_of(fields.get("model"))
    if model_file is not None and not _is_path_in_folder(model_file):
        _fail(line, "a model's file must be a file in the world's folder, or in a folder in it")
    return fields


def read(folder):
    """The objects and sounds of the folder's scene file, checked: a list of
    field dicts, and a list of (name, file name)."""
    objects, sounds = [], []
    for line, source in _statements(_text(path_in(folder))):
        form, fields = _fields(line, source)
        if form == "Object":
            objects.append((line, _checked(line, fields)))
        else:
            sounds.append((line, _checked_sound(line, fields)))
    if not objects:
        raise SceneFileError("%s: there is no scene in it" % FILE_NAME)
    line, first = objects[0]
    if first["kind"] != "scene" or first.get("parent") is not None:
        _fail(line, "the first object must be the scene")
    _check_names(objects, sounds)
    return [fields for _, fields in objects], [sound for _, sound in sounds]


def _text(path):
    try:
        with open(path, "rb") as f:
            data = f.read(LARGEST_FILE + 1)
    except OSError as exc:
        raise SceneFileError("%s can't be read: %s" % (path, exc.strerror)) from None
    if len(data) > LARGEST_FILE:
        raise SceneFileError("%s is not a scene file: it is larger than %d MB"
                             % (path, LARGEST_FILE // (1024 * 1024)))
    try:
        text = data.decode("utf-8")
    except UnicodeDecodeError as exc:
        line = data.count(b"\n", 0, exc.start) + 1
        raise SceneFileError("%s line %d: this is not text" % (FILE_NAME, line)) from None
    return text.replace("\r\n", "\n").replace("\r", "\n")


def _statements(text):
    """(line, text) of each statement: one a line, blank lines and comments left out."""
    count = 0
    for line, source in enumerate(text.split("\n"), 1):
        if not source.strip() or source.lstrip().startswith("#"):
            continue
        count += 1
        if count > MOST_STATEMENTS:
            _fail(line, "a scene holds at most %d objects and sounds" % MOST_STATEMENTS)
        yield line, source


def _check_names(objects, sounds):
    """Every parent comes first and every full name, of an object or a
    sound, is used once."""
    seen = {objects[0][1]["name"].lower()}
    for line, fields in objects[1:]:
        parent = str(fields.get("parent"))
        if parent.lower() not in seen:
            _fail(line, "%s comes before its parent %s" % (fields["name"], parent))
        first_class = fields.get("firstclass", True)
        full = fields["name"] if first_class else parent + "." + fields["name"]
        if full.lower() in seen:
            _fail(line, "two objects are called %s" % full)
        seen.add(full.lower())
    for line, (name, _) in sounds:
        if name.lower() in seen:
            _fail(line, "two things are called %s" % name)
        seen.add(name.lower())


def load(scene, objects, folder):
    """Replaces the scene's objects with those read from the file of folder."""
    scene.start_afresh()
    for channel, value in _values(objects[0]).items():
        scene.backend.set(scene.root.id, channel, value)
    by_name = {scene.root.name.lower(): scene.root}
    for fields in objects[1:]:
        parent = by_name[str(fields["parent"]).lower()]
        thing = scene.create(fields["kind"], fields["name"], parent,
                             bool(fields.get("firstclass", True)), _values(fields),
                             {a: models.within(fields[a], folder) if a == "model" else fields[a]
                              for a in STYLE_DEFAULTS if a in fields})
        by_name[thing.name.lower()] = thing


def _values(fields):
    """The channels of an object, its orientation made a true turn."""
    values = dict(DEFAULT_VALUES, **{c: tuple(fields[c]) for c in DEFAULT_VALUES if c in fields})
    values["orientation"] = g.quat_normalized(values["orientation"])
    return values
