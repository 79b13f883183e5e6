"""The backend interface, as both backends implement it."""

import math

import pytest

from vessa import backend as backends


@pytest.fixture
def nodes():
    backend = backends.create()
    backend.add_node(1, {}, "scene")
    backend.add_node(2, {"position": (1, 2, 3)})
    backend.set_parent(2, 1)
    return backend


def test_a_node_starts_with_the_values_given_and_defaults_for_the_rest(nodes):
    assert nodes.get(2, "position") == (1, 2, 3)
    assert nodes.get(2, "orientation") == (1, 0, 0, 0)
    assert nodes.get(2, "size") == nodes.get(2, "color") == (1, 1, 1)
    assert [nodes.get_style(2, s) for s in backends.STYLES] == list(backends.STYLES.values())


def test_tweens_add_up_ease_and_end_where_they_were_sent(nodes):
    nodes.add_tween(2, "position", (2, 0, 0), 0.0, 1.0, "Abruptly")
    nodes.add_tween(2, "position", (0, 0, 4), 0.0, 2.0, "gently")
    nodes.step(0.5)
    x, _, z = nodes.get(2, "position")
    assert x == pytest.approx(2.0) and z == pytest.approx(3.0 + 4 * 0.25 ** 2 * (3 - 0.5))
    nodes.step(3.0)
    assert nodes.get(2, "position") == pytest.approx((3, 2, 7))


def test_step_answers_finished_tweens_in_order_of_their_end(nodes):
    late = nodes.add_tween(2, "size", (1, 1, 1), 0.0, 2.0, "gently")
    timer = nodes.add_tween(None, None, None, 0.5, 0.0, "gently")
    early = nodes.add_tween(2, "color", (-1, 0, 0), 0.0, 1.0, "gently")
    not_yet = nodes.add_tween(2, "size", (1, 0, 0), 5.0, 1.0, "gently")
    assert nodes.step(3.0) == [timer, early, late]
    assert nodes.tween_count() == 1
    nodes.cancel(not_yet)
    assert nodes.tween_count() == 0 and nodes.get(2, "size") == pytest.approx((2, 2, 2))


def test_turns_compose_and_a_cancelled_tween_stays_where_it_got(nodes):
    quarter = math.pi / 2
    nodes.add_tween(2, "orientation", (0, 1, 0, quarter), 0.0, 1.0, "abruptly")
    nodes.step(1.0)
    tween = nodes.add_tween(2, "orientation", (1, 0, 0, 2 * quarter), 1.0, 1.0, "abruptly")
    nodes.step(1.5)
    nodes.cancel(tween)
    nodes.step(2.0)
    s = math.sqrt(0.5)
    yaw = (s, 0, s, 0)
    pitch = (math.cos(quarter / 2), math.sin(quarter / 2), 0, 0)
    w1, x1, y1, z1 = pitch
    w2, x2, y2, z2 = yaw
    expected = (w1 * w2 - x1 * x2 - y1 * y2 - z1 * z2, w1 * x2 + x1 * w2 + y1 * z2 - z1 * y2,
                w1 * y2 - x1 * z2 + y1 * w2 + z1 * x2, w1 * z2 + x1 * y2 - y1 * x2 + z1 * w2)
    assert nodes.get(2, "orientation") == pytest.approx(expected)


def test_styles_keep_the_words_given_and_truth_values(nodes):
    nodes.set_style(2, "filling", "LINES")
    nodes.set_style(2, "visible", 0)
    nodes.set_style(2, "model", "")
    assert nodes.get_style(2, "filling") == "LINES"
    assert nodes.get_style(2, "visible") is False
    with pytest.raises(ValueError):
        nodes.set_style(2, "sparkle", True)


def test_a_removed_node_takes_its_tweens_and_unknown_nodes_are_errors(nodes):
    nodes.add_node(3, {})
    nodes.add_tween(2, "position", (1, 0, 0), 0.0, 1.0, "gently")
    nodes.step(2.0)
    nodes.add_tween(2, "position", (1, 0, 0), 2.0, 1.0, "gently")
    nodes.add_tween(3, "position", (1, 0, 0), 2.0, 1.0, "gently")
    nodes.remove_node(2)
    assert nodes.tween_count() == 1
    nodes.remove_node(3)
    assert nodes.tween_count() == 0
    with pytest.raises(KeyError):
        nodes.get(2, "position")
    with pytest.raises(KeyError):
        nodes.set_parent(1, 99)


def test_a_line_meets_the_first_visible_shape_in_the_world(nodes):
    nodes.add_node(3, {"position": (0, 0, 5), "size": (2, 2, 2)})
    nodes.set_parent(3, 1)
    nodes.add_node(4, {"position": (0, 0, 3)}, "camera")   # cameras have no shape
    nodes.set_parent(4, 1)
    assert nodes.first_hit((0, 0, 0), (0, 0, 1), 10.0) == pytest.approx(4.0)
    assert nodes.first_hit((0, 0, 0), (0, 0, 1), 3.5) is None
    assert nodes.first_hit((0, 0, 0), (0, 0, -1), 10.0) is None
    nodes.set_style(3, "visible", False)
    assert nodes.first_hit((0, 0, 0), (0, 0, 1), 10.0) is None
