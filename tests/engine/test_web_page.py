"""SaveForPlugin: the page that plays a saved world, and the shapes of its
models that a browser can't read from their files."""

import base64
import json
import os
import shutil
import struct
import zlib

import pytest

from vessa import web

PLAYER = "vessa47_player"


@pytest.fixture
def saved(interp, tmp_path):
    """A saved world with a gallery object when the backend reads model files."""
    world = tmp_path / "Picnic"
    world.mkdir()
    bunny = os.path.join(os.environ.get("VESSA47_HOME", ""), "Objects", "Animals", "Bunny.mdl")
    if interp.GetModelFileKinds() and os.path.isfile(bunny):
        shutil.copy(bunny, world / "Bunny.mdl")
        assert interp.addobject(str(world / "Bunny.mdl")) is None
    assert interp.SaveScene(str(world)) is None
    site = tmp_path / "site"
    site.mkdir()
    return interp, world, site


def test_the_page_asks_for_the_chosen_size_place_and_controls(saved):
    interp, world, site = saved
    page = site / "picnic.htm"
    assert interp.SaveForPlugin(str(world), str(page), "400", 300, "center", 0, PLAYER) is None
    text = page.read_bytes()
    assert b"\r\n" in text and b"\n" not in text.replace(b"\r\n", b"")
    html = text.decode("utf-8")
    assert 'width="400" height="300"' in html
    assert "text-align: center" in html
    assert 'id="vessa47-navigator" hidden' in html
    assert '"picnic.ves"' in html and '"picnic.models.json"' in html
    assert "./vessa47_player/player.js" in html
    assert "<title>Picnic</title>" in html


def test_the_models_shapes_go_beside_the_page(saved, backend_kind):
    interp, world, site = saved
    assert interp.SaveForPlugin(str(world), str(site / "p.html"), 320, 240, "Left", 1,
                                PLAYER) is None
    shapes = json.loads((site / "p.models.json").read_text(encoding="utf-8"))
    if backend_kind == "python":
        assert shapes == {}      # no model files: every object is a box
        return
    bunny = shapes["Bunny.mdl"]
    assert [p["name"] for p in bunny["parts"]][:2] == ["Bunny", "Head"]
    assert len(bunny["meshes"]) == len(bunny["parts"])
    for part, meshes in zip(bunny["parts"], bunny["meshes"]):
        assert sum(len(m["triangles"]) for m in meshes) == 3 * part["faces"]
        assert sum(len(m["positions"]) for m in meshes) == 3 * part["vertices"]


@pytest.mark.parametrize("page, width, height, position, player, refused", [
    ("p.txt", 320, 240, "Left", PLAYER, "must end in .html or .htm"),
    ("p.html", 0, 240, "Left", PLAYER, "0 x 240"),
    ("p.html", 320, 5000, "Left", PLAYER, "320 x 5000"),
    ("p.html", "wide", 240, "Left", PLAYER, "not in pixels"),
    ("p.html", 320, 240, "Middle", PLAYER, "Middle is not Left, Center or Right"),
    ("p.html", 320, 240, "Left", "../elsewhere", "not a name of a folder"),
    ("p.html", 320, 240, "Left", "x\"><script>", "not a name of a folder"),
])
def test_values_the_page_cant_be_made_with_are_refused_and_nothing_is_written(
        saved, page, width, height, position, player, refused):
    interp, world, site = saved
    answer = interp.SaveForPlugin(str(world), str(site / page), width, height, position, 1,
                                  player)
    assert refused in answer
    assert os.listdir(site) == []


def test_a_file_name_cant_change_the_pages_script(saved):
    interp, world, site = saved
    page = site / "a<!--<script>b.html"
    assert interp.SaveForPlugin(str(world), str(page), 320, 240, "Right", 1, PLAYER) is None
    html = page.read_text(encoding="utf-8")
    assert html.count("<script") == 1 and "<!--" not in html


def test_a_folder_that_cant_be_written_is_told(saved):
    interp, world, site = saved
    answer = interp.SaveForPlugin(str(world), str(site / "none" / "p.html"), 320, 240, "Left",
                                  1, PLAYER)
    assert answer.startswith("SaveForPlugin: ") and "can't be written" in answer


@pytest.mark.parametrize("text, first", [
    ("a = 1\r\n\r\n### Everything below this line is hand-edited Python Code ###\r\nb = 2\r\n", 3),
    ("a = 1\n### Everything below this line is hand-edited Python Code ###\n", 2),
    ("print('no marker')\n", 0),
])
def test_the_page_runs_the_code_boxs_lines_from_after_the_marker(text, first):
    assert web.hand_edited_line(text) == first


def test_the_object_states_name_every_living_object(clocked):
    clocked.ExecuteCode("Camera.Move(Up, 2, Duration=0)", "<Script Text>", "exec")
    clocked.Loop()
    states = json.loads(clocked.GetObjectStates())
    assert states["Camera"]["position"] == [0.0, 2.0, 0.0]
    assert states["Camera"]["visible"] is True
    assert set(states["Camera"]) == {"position", "orientation", "size", "color", "visible"}


def test_the_pages_backend_gives_the_engine_its_own_kind_of_values(monkeypatch):
    """The page's JavaScript answers arrays and its own null; the engine must
    see tuples and None (a held arrow key once met null as a distance)."""
    null = object()
    monkeypatch.setattr(web, "_js_null", null)

    class Page:
        def get(self, node_id, channel):
            return [1.0, 2.0, 3.0]

        def first_hit(self, origin, direction, max_distance):
            return null

        def poll_input(self):
            return [{"kind": "LeftMouseDown", "node": null, "point": null,
                     "ray": [[0.0, 0.0, -8.0], [0.0, 0.0, 1.0]]}]

        def load_model(self, path):
            raise RuntimeError("%s can't be read: it did not come with the page" % path)

    backend = web.WebBackend(Page(), to_js=lambda value: value, js_error=RuntimeError)
    assert backend.get(1, "position") == (1.0, 2.0, 3.0)
    assert backend.first_hit((0, 0, 0), (0, 0, 1), 5.0) is None
    (event,) = backend.poll_input()
    assert event["node"] is None and event["point"] is None
    assert event["ray"] == ((0.0, 0.0, -8.0), (0.0, 0.0, 1.0))
    with pytest.raises(ValueError, match="did not come with the page"):
        backend.load_model("/world/Lamp.mdl")


def _bmp(rows):
    """A 24-bit picture file; rows of (r, g, b) pixels, the top row first."""
    width = len(rows[0])
    pad = b"\0" * (-3 * width % 4)
    body = b"".join(b"".join(bytes((b, g, r)) for r, g, b in row) + pad for row in reversed(rows))
    header = struct.pack("<2sIHHI", b"BM", 54 + len(body), 0, 0, 54)
    info = struct.pack("<IiiHHIIiiII", 40, width, len(rows), 1, 24, 0, len(body), 2835, 2835, 0, 0)
    return header + info + body


def _png_rows(url):
    """The rows of pixels, top first, of an 8-bit RGBA PNG without filters."""
    png = base64.b64decode(url.split(",", 1)[1])
    at, data, width = 8, b"", 0
    while at < len(png):
        (length,), kind = struct.unpack(">I", png[at:at + 4]), png[at + 4:at + 8]
        chunk = png[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width = struct.unpack(">I", chunk[:4])[0]
        elif kind == b"IDAT":
            data += chunk
        at += 12 + length
    raw, stride = zlib.decompress(data), 1 + 4 * width
    return [[tuple(raw[i:i + 3]) for i in range(row + 1, row + stride, 4)]
            for row in range(0, len(raw), stride)]


def test_a_models_pictures_go_beside_the_page_the_right_way_up(saved, backend_kind):
    interp, world, site = saved
    if backend_kind == "python" or not interp.GetModelFileKinds():
        pytest.skip("the pure-Python backend reads no model files")
    (world / "Tile.obj").write_text("mtllib Tile.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
                                    "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nusemtl skin\n"
                                    "f 1/1 2/2 3/3 4/4\n")
    (world / "Tile.mtl").write_text("newmtl skin\nmap_Kd Tile.bmp\n")
    top, bottom = [(255, 0, 0), (0, 255, 0)], [(0, 0, 255), (255, 255, 0)]
    (world / "Tile.bmp").write_bytes(_bmp([top, bottom]))
    assert interp.addobject(str(world / "Tile.obj")) is None
    assert interp.SaveScene(str(world)) is None
    assert interp.SaveForPlugin(str(world), str(site / "p.html"), 320, 240, "Left", 1,
                                PLAYER) is None
    tile = json.loads((site / "p.models.json").read_text(encoding="utf-8"))["Tile.obj"]
    (mesh,) = tile["meshes"][0]
    assert mesh["picture"] == 0 and len(mesh["texcoords"]) == 2 * len(mesh["positions"]) // 3
    assert _png_rows(tile["pictures"][0]) == [top, bottom]
