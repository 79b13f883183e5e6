"""Objects from model files: the object and its named parts come into the
scene as objects and parts (Bunny, Bunny.Head), each drawn with its piece of
the file; the backend reads the file once for every object made from it.

A model reference, kept as each object's `model`, says what shape it is
drawn with: "" a box, "text:<words>" solid letters, "<file>#<part>" a part
of a model file (#0 the object itself). In a saved world, files inside the
world's folder are named relative to it, so a world folder is complete.
"""

import os
import re
import shutil

TEXT = "text:"
PART_MARK = "#"


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
    """text made into a Python name: letters, digits and _, not a digit first."""
    name = re.sub(r"\W", "_", str(text)).strip("_")
    if not name or name[0].isdigit():
        name = fallback + name
    return name


def add_object(scene, path, where, facing):
    """Makes an object of the model file at path, standing at where and
    turned to facing; None, or the failure text (and nothing added)."""
    path = os.path.abspath(str(path))
    try:
        model = scene.backend.load_model(path)
    except ValueError as exc:
        return str(exc)
    made = []
    for index, part in enumerate(model["parts"]):
        values = {"position": part["position"], "orientation": part["orientation"]}
        styles = {"model": reference(path, index)}
        if index == 0:
            values["position"], values["orientation"] = tuple(where), tuple(facing)
            name = valid_name(model["name"], "Object")
            if not scene.is_free_name(name):
                name = scene.unique_name(name)
            thing = scene.create("model", name, scene.root, True, values, styles)
        else:
            parent = made[part["parent"]]
            taken = {c.local_name.lower() for c in parent.children}
            name = valid_name(part["name"], "Part")
            base, n = name, 2
            while name.lower() in taken:
                name, n = "%s%d" % (base, n), n + 1
            thing = scene.create("model", name, parent, False, values, styles)
        thing.vertex_count, thing.face_count = part["vertices"], part["faces"]
        made.append(thing)
    return None


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
    and makes the things use the copies. Each copy is written in scratch
    (folder when not given) and then renamed into folder: it is there
    whole or not at all."""
    folder = os.path.abspath(folder)
    copies = {}
    for thing in things:
        source = file_of(thing.model)
        if source is None or os.path.dirname(os.path.abspath(source)) == folder:
            continue
        if source not in copies:
            copies[source] = copy_into(source, folder, scratch)
        thing.model = with_file(thing.model, copies[source])


def copy_into(source, folder, scratch=None):
    """Where the file source is kept in folder: a copy under its own name, or
    a numbered one when another file has that name there. The copy is made
    in scratch (folder when not given), flushed, and renamed into place."""
    stem, ext = os.path.splitext(os.path.basename(source))
    target, n = os.path.join(folder, stem + ext), 2
    while os.path.exists(target) and not _same_file(source, target):
        target, n = os.path.join(folder, "%s%d%s" % (stem, n, ext)), n + 1
    if not os.path.exists(target) and os.path.exists(source):
        partial = os.path.join(scratch or folder, os.path.basename(target) + ".copying")
        with open(source, "rb") as original, open(partial, "wb") as copy:
            shutil.copyfileobj(original, copy)
            copy.flush()
            os.fsync(copy.fileno())
        os.replace(partial, target)
    return target


def _same_file(a, b):
    try:
        with open(a, "rb") as fa, open(b, "rb") as fb:
            return fa.read() == fb.read()
    except OSError:
        return False


def relative_to(model, folder):
    """The reference as a world folder's scene file keeps it."""
    source = file_of(model)
    if source is None or os.path.dirname(source) != os.path.abspath(folder):
        return model
    return with_file(model, os.path.basename(source))


def within(model, folder):
    """The reference of a scene file read from folder, made whole."""
    source = file_of(model)
    if source is None or os.path.isabs(source):
        return model
    return with_file(model, os.path.join(os.path.abspath(folder), source))
