"""World_Scene.py: the scene of a world folder, one statement per object,
then one per sound.

    Object(kind="camera", name="Camera", parent="Scene", firstclass=True,
           position=(0.0, 1.5, -8.0), ...)
    Sound(name="Pop", file="Pop.wav")

The file looks like Python so that a person can read it, but it is never run:
the reader parses it and accepts only statements of exactly these forms, with
literal values, so a world from a stranger can't execute anything. Parents
come before their children; a parent is named by its full name. Model and
sound files are named by their names in the world's folder, never by a path:
a stranger's world can't reach other files, which a later save would copy.
"""

import ast
import keyword
import os

from . import models, namespace
from .scene import DEFAULT_VALUES, STYLE_DEFAULTS

FILE_NAME = "World_Scene.py"
HEADER = "# Vessa47 scene: read by the engine, never run.\r\n"
KINDS = ("scene", "camera", "light", "model")
FORMS = ("Object", "Sound")
STYLE_TYPES = {"visible": bool, "filling": str, "lighting": str, "texture": bool,
               "model": str, "shadow": bool, "vertex_count": int, "face_count": int}
VALUE_LENGTHS = {"position": 3, "orientation": 4, "size": 3, "color": 3}


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

def _statement(scene, thing, folder):
    fields = {"kind": thing.kind, "name": thing.local_name,
              "parent": thing.parent.name if thing.parent else None,
              "firstclass": thing.first_class}
    for channel, default in DEFAULT_VALUES.items():
        value = tuple(round(x, 9) for x in scene.backend.get(thing.id, channel))
        if value != default:
            fields[channel] = value
    # values left out are the defaults, which is what the reader assumes
    fields.update({a: getattr(thing, a) for a, default in STYLE_DEFAULTS.items()
                   if getattr(thing, a) != default})
    if "model" in fields:
        fields["model"] = models.relative_to(fields["model"], folder)
    return "Object(%s)\r\n" % ", ".join("%s=%r" % item for item in fields.items())


def _in_family_order(thing):
    yield thing
    for child in thing.children:
        if child.alive:
            yield from _in_family_order(child)


def text_of(scene, folder, sounds=()):
    """The scene file of the world in folder. sounds: (name, file) of each
    sound of the scene, its file named as in the scene file of folder."""
    return (HEADER + "".join(_statement(scene, t, folder) for t in _in_family_order(scene.root))
            + "".join("Sound(name=%r, file=%r)\r\n" % row for row in sounds))


def write(scene, folder, sounds=()):
    with open(path_in(folder), "w", encoding="utf-8", newline="") as f:
        f.write(text_of(scene, folder, sounds))


# -- reading ------------------------------------------------------------------

def _fail(line, message):
    raise SceneFileError("%s line %d: %s" % (FILE_NAME, line, message))


def _number(node):
    if isinstance(node, ast.UnaryOp) and isinstance(node.op, ast.USub):
        value = _number(node.operand)
        return None if value is None else -value
    if isinstance(node, ast.Constant) and type(node.value) in (int, float):
        return node.value
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


def _fields(statement):
    """The line, the form (Object or Sound) and the values of a statement."""
    line = statement.lineno
    call = statement.value if isinstance(statement, ast.Expr) else None
    if not (isinstance(call, ast.Call) and isinstance(call.func, ast.Name)
            and call.func.id in FORMS and not call.args):
        _fail(line, "each line must be Object(name=value, ...) or Sound(name=..., file=...)")
    fields = {}
    for given in call.keywords:
        if given.arg is None or given.arg in fields:
            _fail(line, "each value is given once, by its name")
        fields[given.arg] = _literal(given.value, line)
    return line, call.func.id, fields


def _is_name(value):
    return isinstance(value, str) and value.isidentifier() and not keyword.iskeyword(value)


def _is_file_name(value):
    """A file directly in the world's folder."""
    return (isinstance(value, str) and value not in ("", ".", "..")
            and not any(mark in value for mark in "/\\:"))


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


def _checked(line, fields):
    known = {"kind", "name", "parent", "firstclass"} | set(DEFAULT_VALUES) | set(STYLE_DEFAULTS)
    unknown = set(fields) - known
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
    for channel, size in VALUE_LENGTHS.items():
        value = fields.get(channel, DEFAULT_VALUES[channel])
        if not (isinstance(value, (tuple, list)) and len(value) == size
                and all(isinstance(x, (int, float)) and not isinstance(x, bool) for x in value)):
            _fail(line, "%s must be %d numbers" % (channel, size))
    for attribute, kind in STYLE_TYPES.items():
        if attribute in fields and type(fields[attribute]) is not kind:
            _fail(line, "%s must be a %s" % (attribute, kind.__name__))
    model_file = models.file_of(fields.get("model"))
    if model_file is not None and not _is_file_name(model_file):
        _fail(line, "a model's file must be the name of a file in the world's folder")
    return fields


def read(folder):
    """The objects and sounds of the folder's scene file, checked: a list of
    field dicts, and a list of (name, file name)."""
    path = path_in(folder)
    try:
        with open(path, encoding="utf-8") as f:
            text = f.read()
    except OSError as exc:
        raise SceneFileError("%s can't be read: %s" % (path, exc.strerror)) from None
    try:
        tree = ast.parse(text, FILE_NAME)
    except (SyntaxError, ValueError) as exc:
        raise SceneFileError("%s is not a scene file: %s" % (path, exc)) from None
    objects, sounds = [], []
    for statement in tree.body:
        line, form, fields = _fields(statement)
        if form == "Object":
            objects.append(_checked(line, fields))
        else:
            sounds.append(_checked_sound(line, fields))
    if not objects or objects[0]["kind"] != "scene" or objects[0].get("parent") is not None:
        raise SceneFileError("%s: the first object must be the scene" % FILE_NAME)
    _check_names(objects, [name for name, _ in sounds])
    return objects, sounds


def _check_names(objects, sound_names):
    """Every parent comes first and every full name, of an object or a
    sound, is used once."""
    seen = {objects[0]["name"].lower()}
    for fields in objects[1:]:
        parent = str(fields.get("parent"))
        if parent.lower() not in seen:
            raise SceneFileError("%s: %s comes before its parent %s"
                                 % (FILE_NAME, fields["name"], parent))
        first_class = fields.get("firstclass", True)
        full = fields["name"] if first_class else parent + "." + fields["name"]
        if full.lower() in seen:
            raise SceneFileError("%s: two objects are called %s" % (FILE_NAME, full))
        seen.add(full.lower())
    for name in sound_names:
        if name.lower() in seen:
            raise SceneFileError("%s: two things are called %s" % (FILE_NAME, name))
        seen.add(name.lower())


def load(scene, objects, folder):
    """Replaces the scene's objects with those read from the file of folder."""
    scene.start_afresh()
    root_fields = objects[0]
    for channel in DEFAULT_VALUES:
        scene.backend.set(scene.root.id, channel, root_fields.get(channel, DEFAULT_VALUES[channel]))
    by_name = {scene.root.name.lower(): scene.root}
    for fields in objects[1:]:
        parent = by_name[str(fields["parent"]).lower()]
        thing = scene.create(fields["kind"], fields["name"], parent,
                             bool(fields.get("firstclass", True)),
                             {c: tuple(fields[c]) for c in DEFAULT_VALUES if c in fields},
                             {a: models.within(fields[a], folder) if a == "model" else fields[a]
                              for a in STYLE_DEFAULTS if a in fields})
        by_name[thing.name.lower()] = thing
