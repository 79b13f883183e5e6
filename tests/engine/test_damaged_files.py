"""Files from a stranger's world that are damaged: each object or sound file
is refused with a message that names it, or loaded; the program goes on."""

import os
import random

import pytest

from conftest import misc, tagged, write_tone

# Words that would tell a novice nothing, or that something inside broke.
JARGON = ("Error", "Exception", "Traceback", "osg", "std::", "errno", "None")


def flipped(data, seed, flips=40):
    """data with flips random bits turned over, the same for the same seed."""
    rng = random.Random(seed)
    copy = bytearray(data)
    for _ in range(flips):
        copy[rng.randrange(len(copy))] ^= 1 << rng.randrange(8)
    return bytes(copy)


def bunny_bytes():
    path = os.path.join(os.environ.get("VESSA47_HOME", ""), "Objects", "Animals", "Bunny.mdl")
    if not os.path.isfile(path):
        pytest.skip("needs the gallery in the home folder (VESSA47_HOME)")
    with open(path, "rb") as f:
        return f.read()


def assert_refusal_for_a_novice(failure, file_name, backend_kind):
    assert file_name in failure
    assert not any(word in failure for word in JARGON), failure
    if backend_kind == "compiled":
        assert "damaged" in failure


@pytest.fixture
def world(clocked):
    clocked.PollForTreeDifferences()
    misc(clocked)
    return clocked


def test_damaged_object_files_added_are_refused_with_nothing_added_or_loaded_whole(
        world, tmp_path, backend_kind):
    data, refused = bunny_bytes(), 0
    for seed in range(8):
        path = tmp_path / ("Evil%d.mdl" % seed)
        path.write_bytes(flipped(data, seed))
        before = world.scene.living()
        failure = world.addobject(str(path))
        records = world.PollForTreeDifferences()
        made = [t for t in world.scene.living() if t not in before]
        if failure:
            refused += 1
            assert_refusal_for_a_novice(failure, path.name, backend_kind)
            assert records == [] and made == []
        else:
            assert made and made[0].GetVertexCount() > 0
            world.scene.destroy(made[0])
            world.PollForTreeDifferences()
    assert refused >= 4


def test_a_world_with_a_damaged_object_file_loads_and_names_the_file(
        world, tmp_path, backend_kind):
    data, refused = bunny_bytes(), 0
    for seed in range(8):
        folder = tmp_path / str(seed)
        folder.mkdir()
        (folder / "evil.mdl").write_bytes(flipped(data, seed))
        (folder / "World_Scene.py").write_text(
            "Object(kind='scene', name='Scene', parent=None)\n"
            "Object(kind='model', name='Evil', parent='Scene', model='evil.mdl#0')\n"
            "Object(kind='model', name='Head', parent='Evil', firstclass=False,"
            " model='evil.mdl#1')\n")
        assert world.LoadWorld(str(folder)) is None
        output = tagged(misc(world), "output")
        if output:
            refused += 1
            assert len(output) == 1     # once for the file, not once per part
            assert_refusal_for_a_novice(output[0][1], "evil.mdl", backend_kind)
        assert world.scene.find("Evil.Head") is not None
    assert refused >= 4


def test_damaged_and_cut_sound_files_are_refused_or_played(world, tmp_path, backend_kind):
    write_tone(tmp_path / "Tone.wav")
    data = (tmp_path / "Tone.wav").read_bytes()
    damaged = [flipped(data, seed, flips=8) for seed in range(12)]
    damaged += [data[:n] for n in (0, 4, 12, 36, 44, 45, len(data) // 2)]
    damaged += [data[:40] + b"\xff\xff\xff\x7f" + data[44:]]    # a huge count of samples
    refused = 0
    for n, sound in enumerate(damaged):
        path = tmp_path / ("Damaged%d.wav" % n)
        path.write_bytes(sound)
        failure = world.AddSound(str(path))
        if failure:
            refused += 1
            assert_refusal_for_a_novice(failure, path.name, backend_kind)
        else:
            assert world.sounds.find("Damaged%d" % n) is not None
    assert refused >= 6
