"""Objects from model files: the object and its named parts come into the
scene as objects and parts (Bunny, Bunny.Head), each drawn with its piece of
the file; the backend reads the file once for every object made from it.

A model reference, kept as each object's `model`, says what shape it is
drawn with: "" a box, "text:<words>" solid letters, "<file>#<part>" a part
of a model file (#0 the object itself). In a saved world, files inside the
world's folder are named relative to it ("Horse.obj", "Horse/Horse.obj"),
so a world folder is complete: a model file is copied into it with the
files it names (materials, pictures) at the same places beside it.
"""

import itertools
import math
import os
import re
import shutil

from . import commands
from .namespace import part_refusal

TEXT = "text:"
PART_MARK = "#"
# A new object more than TOO_BIG meters across could hold the camera, which
# starts 8 meters from the middle, and hide the world: it comes in shrunk to
# at most FITTED meters, which that camera sees whole, its true size one
# command away.
TOO_BIG = 10.0
FITTED = 4.0

# What the output tells of an object from a file.
TOLD = {
    "too_big": "{object} is {across} meters across in its file, too big to see in the world: "
               "it came in {factor} times smaller. {object}.Resize(InAllDirections, {factor}) "
               "gives it its true size.",
    "missing_when_added": "{file} uses {named}, which is not in its folder: {object} is shown "
                          "without it.",
    "missing_when_saved": "{file} uses {named}, which is not in its folder: the world was saved "
                          "without it.",
    "gone_when_saved": "{file} is gone, so the world was saved without it.",
}


def text(key, **values):
    return TOLD[key].format(**values)


def reference(path, part):
    return "%s%s%d" % (path, PART_MARK, part)


def file_of(model):
    """The model file a reference names, or None for a box or words."""
    if not model or model.startswith(TEXT):
        return None
    return model.rsplit(PART_MARK, 1)[0]


def with_file(model, path):
    """The reference with its file named path instead."""
    return path + model[len(file_of(model)):]


def valid_name(text, fallback):
    """text made into a Python name: what is no letter, digit or _ becomes
    _, and fallback goes first when it would begin with a digit."""
    name = "".join(c if ("x" + c).isidentifier() else "_" for c in str(text)).strip("_")
    if not name.isidentifier():
        name = fallback + name
    return name


def name_from_file(path):
    """An object's name made of its file's, never of the folders it is in:
    the words joined, each begun with a capital ("My Horse.3ds": MyHorse)."""
    stem = os.path.splitext(os.path.basename(path))[0]
    words = [word for word in re.split(r"\W+", stem) if word]
    return valid_name("".join(word[0].upper() + word[1:] for word in words), "Object")


def _part_names(parts):
    """Each part's name: the file's own, made a name the world can use, and
    numbered only where two of one object would be the same; a number never
    takes a name the file gives another of them (Zahn, Zahn, Zahn2 become
    Zahn, Zahn3, Zahn2)."""
    names = [valid_name(part["name"], "Part") for part in parts]
    names = [name if part_refusal(name) is None else "Part_" + name for name in names]
    siblings = {}
    for index, part in enumerate(parts[1:], 1):
        siblings.setdefault(part["parent"], []).append(index)
    for indices in siblings.values():
        given = {names[i].lower() for i in indices}
        taken = set()
        for i in indices:
            if names[i].lower() in taken:
                base, n = names[i], 2
                while ("%s%d" % (base, n)).lower() in taken | given:
                    n += 1
                names[i] = "%s%d" % (base, n)
            taken.add(names[i].lower())
    return names


def add_object(scene, path, where, facing, tell):
    """Makes an object of the model file at path, named after the file,
    standing at where and turned to facing (its front is the file's +z).
    Answers None, or the failure text (and nothing is added). What the user
    should know (files it names that are missing, a size too big to see)
    goes to tell."""
    path = os.path.abspath(str(path))
    try:
        model = scene.backend.load_model(path)
    except ValueError as exc:
        return str(exc)
    name = name_from_file(path)
    if not scene.is_free_name(name):
        name = scene.unique_name(name)
    names = _part_names(model["parts"])
    made = []
    for index, part in enumerate(model["parts"]):
        values = {"position": part["position"], "orientation": part["orientation"]}
        styles = {"model": reference(path, index)}
        if index == 0:
            values["position"], values["orientation"] = tuple(where), tuple(facing)
            thing = scene.create("model", name, scene.root, True, values, styles)
        else:
            thing = scene.create("model", names[index], made[part["parent"]], False, values,
                                 styles)
        thing.vertex_count, thing.face_count = part["vertices"], part["faces"]
        made.append(thing)
    for named in model["missing"]:
        tell(text("missing_when_added", file=os.path.basename(path), named=named, object=name))
    fitted = _fit_to_view(made[0])
    if fitted:
        factor, across = fitted
        tell(text("too_big", object=name, across="{:,.0f}".format(across), factor=factor))
    return None


def _fit_to_view(thing):
    """Shrinks a new object too big to see, with its parts, as Resize does;
    the factor and its size across in its file, or None."""
    low, high = commands.extent(thing)
    across = max(h - l for l, h in zip(low, high))
    if across <= TOO_BIG:
        return None
    factor = math.ceil(across / FITTED)
    backend = thing.scene.backend
    for member in thing.family():
        backend.set(member.id, "size", tuple(x / factor for x in member.size))
        if member is not thing:
            backend.set(member.id, "position", tuple(x / factor for x in member.position))
    return factor, across


def unreadable(things, backend):
    """Why each model file that things are drawn with can't be read, once
    per file: such things stay in the scene, drawn with nothing."""
    failures = []
    for path in sorted({file_of(thing.model) for thing in things} - {None}):
        try:
            backend.load_model(path)
        except ValueError as exc:
            failures.append(str(exc))
    return failures


def add_text(scene, words, where, facing):
    """Solid letters on the front of an object named after the words."""
    name = valid_name(words, "Text")[:24] or "Text"
    if not scene.is_free_name(name):
        name = scene.unique_name(name)
    return scene.create("model", name, scene.root, True,
                        {"position": tuple(where), "orientation": tuple(facing)},
                        {"model": TEXT + str(words)})


def store(thing, path):
    """Writes thing and its parts to an object file of the engine's own kind."""
    family = thing.family()
    index = {member.id: n for n, member in enumerate(family)}
    parts = [(member.id, member.local_name, index.get(member.parent.id) if n else None)
             for n, member in enumerate(family)]
    thing.scene.backend.store_model(str(path), parts)


def replace(thing, path):
    """Draws thing and its parts with the pieces of the file at path, which
    has their structure (a repainted copy): they keep their places."""
    path = os.path.abspath(str(path))
    try:
        model = thing.scene.backend.load_model(path)
    except ValueError as exc:
        return str(exc)
    family = thing.family()
    for index in range(min(len(family), len(model["parts"]))):
        family[index].model = reference(path, index)
    return None


def keep_in_folder(things, folder, scratch=None):
    """Copies the model files of things that live outside folder into it,
    each with the files it names, and makes the things use the copies.
    Each copy is written in scratch (folder when not given) and then renamed
    into place: it is there whole or not at all. Answers what the user should
    be told of files that could not come."""
    folder = os.path.abspath(folder)
    copies, notes = {}, []
    for thing in things:
        source = file_of(thing.model)
        if source is None or _inside(source, folder):
            continue
        if source not in copies:
            copies[source] = _copy_model(source, folder, thing.scene.backend, notes, scratch)
        thing.model = with_file(thing.model, copies[source])
    return notes


def _inside(path, folder):
    return os.path.abspath(path).startswith(os.path.join(folder, ""))


def _copy_model(source, folder, backend, notes, scratch):
    """Where the model file source is kept in folder, with the files it
    names beside it as they were: in folder itself unless one of them would
    take the place of another file there, else in a folder of its own."""
    try:
        model = backend.load_model(source)
    except ValueError:      # refused, or gone: the file goes as it is, if it is there
        model = {"files": [], "missing": []}
    if not os.path.exists(source):
        notes.append(text("gone_when_saved", file=source))
    beside = os.path.dirname(source)
    named = [name for name in model["files"]
             if _inside(os.path.join(beside, name), beside)]
    stem = os.path.splitext(os.path.basename(source))[0]
    places = itertools.chain([folder], (os.path.join(folder, stem + ("%d" % n if n > 1 else ""))
                                        for n in itertools.count(1)))
    place = next(place for place in places
                 if all(_fits(os.path.join(beside, name), os.path.join(place, name))
                        for name in named))
    for name in named:
        target = os.path.join(place, name)
        if not os.path.exists(target):
            os.makedirs(os.path.dirname(target), exist_ok=True)
            _copy_whole(os.path.join(beside, name), target, scratch)
    for name in model["missing"]:
        notes.append(text("missing_when_saved", file=os.path.basename(source), named=name))
    os.makedirs(place, exist_ok=True)
    return copy_into(source, place, scratch)


def _fits(source, target):
    return not os.path.exists(target) or _same_file(source, target)


def copy_into(source, folder, scratch=None):
    """Where the file source is kept in folder: a copy under its own name, or
    a numbered one when another file has that name there. The copy is made
    in scratch (folder when not given), flushed, and renamed into place."""
    stem, ext = os.path.splitext(os.path.basename(source))
    target, n = os.path.join(folder, stem + ext), 2
    while os.path.exists(target) and not _same_file(source, target):
        target, n = os.path.join(folder, "%s%d%s" % (stem, n, ext)), n + 1
    if not os.path.exists(target) and os.path.exists(source):
        _copy_whole(source, target, scratch)
    return target


def _copy_whole(source, target, scratch):
    """Copies source to target by way of scratch (target's folder when not
    given), flushed and then renamed: target is there whole or not at all."""
    partial = os.path.join(scratch or os.path.dirname(target),
                           os.path.basename(target) + ".copying")
    with open(source, "rb") as original, open(partial, "wb") as copy:
        shutil.copyfileobj(original, copy)
        copy.flush()
        os.fsync(copy.fileno())
    os.replace(partial, target)


def _same_file(a, b):
    try:
        with open(a, "rb") as fa, open(b, "rb") as fb:
            return fa.read() == fb.read()
    except OSError:
        return False


def relative_to(model, folder):
    """The reference as a world folder's scene file keeps it: a file inside
    the folder by its path from there, "/" between folders."""
    source = file_of(model)
    folder = os.path.abspath(folder)
    if source is None or not _inside(source, folder):
        return model
    return with_file(model, os.path.relpath(source, folder).replace(os.sep, "/"))


def within(model, folder):
    """The reference of a scene file read from folder, made whole."""
    source = file_of(model)
    if source is None or os.path.isabs(source):
        return model
    return with_file(model, os.path.join(os.path.abspath(folder), *source.split("/")))
