"""Every object of the gallery comes into the scene with the parts its table
promises (tools/gallery/README.md), named as a world names them."""

import os
import re

import pytest

from vessa import Interpreter

HERE = os.path.dirname(os.path.abspath(__file__))
TABLE = os.path.join(HERE, "..", "..", "tools", "gallery", "README.md")
ROW = re.compile(r"^\| (\w+) \| (\w+) \| [\d.]+ \| (.+) \|$")


def promised():
    """(folder, object, [part paths]) for each row of the gallery's table."""
    with open(TABLE, encoding="utf-8") as table:
        rows = [ROW.match(line.strip()) for line in table]
    return [(m[1], m[2], [] if m[3] == "-" else [p.strip() for p in m[3].split(",")])
            for m in rows if m and m[1] != "Folder"]


def test_each_gallery_object_has_the_parts_it_promises(backend_kind):
    objects = os.path.join(os.environ.get("VESSA47_HOME", ""), "Objects")
    if backend_kind != "compiled" or not os.path.isfile(TABLE) or not os.path.isdir(objects):
        pytest.skip("needs the compiled backend and the gallery in the home folder")
    engine = Interpreter()
    for folder, name, parts in promised():
        assert engine.addobject(os.path.join(objects, folder, name + ".mdl")) is None, name
        made = engine.scene.find(name)
        assert sorted(t.name for t in made.family()[1:]) == sorted(
            "%s.%s" % (name, part) for part in parts), name
        assert made.GetVertexCount() > 0
        engine.scene.destroy(made)
    engine.Close()
