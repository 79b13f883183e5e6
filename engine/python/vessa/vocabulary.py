"""The words of the world's language: the values of the commands' parameters.

Each word is a str, so a world may also write "Forward"; comparisons ignore
case. Several spellings of one word exist because the menus and the tables
spell them differently and both kinds of text reach the engine.
"""

from . import geometry


class Word(str):
    """A value of a parameter kind, named in the world's namespace."""

    def __new__(cls, text, kind):
        word = super().__new__(cls, text)
        word.kind = kind
        return word


def _words(kind, *spellings):
    return {s: Word(s, kind) for s in spellings}


def key(value):
    """The comparison form of a word or a text."""
    return str(value).lower()


MOVE_DIRECTIONS = {
    "forward": geometry.FORWARD, "back": geometry.scale(geometry.FORWARD, -1),
    "right": geometry.RIGHT, "left": geometry.scale(geometry.RIGHT, -1),
    "up": geometry.UP, "down": geometry.scale(geometry.UP, -1),
}

# (axis of the object, sign): turning Left swings the front to the left.
TURN_DIRECTIONS = {
    "left": (geometry.UP, -1), "right": (geometry.UP, 1),
    "up": (geometry.RIGHT, -1), "down": (geometry.RIGHT, 1),
    "forward": (geometry.RIGHT, 1), "back": (geometry.RIGHT, -1),
}
ROLL_DIRECTIONS = {"left": (geometry.FORWARD, 1), "right": (geometry.FORWARD, -1)}

RESIZE_DIRECTIONS = {
    "inalldirections": (1.0, 1.0, 1.0), "lefttoright": (1.0, 0.0, 0.0),
    "toptobottom": (0.0, 1.0, 0.0), "fronttoback": (0.0, 0.0, 1.0),
}

COLORS = {
    "black": (0.0, 0.0, 0.0), "white": (1.0, 1.0, 1.0), "red": (1.0, 0.0, 0.0),
    "blue": (0.0, 0.0, 1.0), "yellow": (1.0, 1.0, 0.0), "pink": (1.0, 0.75, 0.8),
    "orange": (1.0, 0.5, 0.0), "green": (0.0, 0.6, 0.0), "purple": (0.5, 0.0, 0.5),
    "brown": (0.55, 0.27, 0.07), "grey": (0.5, 0.5, 0.5), "gray": (0.5, 0.5, 0.5),
}

SURFACES = ("OnTopOf", "OnBottomOf", "InFrontOf", "InBackOf", "Above", "Below", "Behind",
            "OnFloorOf", "OnCeilingOf", "ToLeftOf", "ToRightOf", "Beneath")

STYLES = ("Gently", "gently", "Abruptly", "abruptly", "BeginGently", "BeginAbruptly",
          "beginAbruptly", "endAbruptly", "EndAbruptly", "EndGently")

HOW_MUCH = ("ObjectAndParts", "ObjectOnly", "ObjectAndChildren")

EVENTS = ("KeyDown", "KeyUp", "LeftMouseDown", "LeftMouseUp", "RightMouseDown", "RightMouseUp")

WORDS = {}
WORDS.update(_words("direction", "Forward", "forward", "Back", "back", "Left", "left",
                    "Right", "right", "Up", "up", "Down", "down"))
WORDS.update(_words("resize", "InAllDirections", "LeftToRight", "TopToBottom", "FrontToBack"))
WORDS.update(_words("color", "Black", "White", "Red", "Blue", "Yellow", "Pink", "Orange",
                    "Green", "Purple", "Brown", "Grey", "Gray"))
WORDS.update(_words("surface", *SURFACES))
WORDS.update(_words("style", *STYLES))
WORDS.update(_words("howmuch", *HOW_MUCH))
WORDS.update(_words("rubber", "LikeRubber"))
WORDS.update(_words("value", "Yes", "No", "Toggle"))
WORDS.update(_words("filling", "Solid", "Lines", "Points"))
WORDS.update(_words("lighting", "Lit", "UnLit"))
WORDS.update(_words("all", "All"))
WORDS.update(_words("event", *EVENTS))


_BY_KIND = {}
for _word in WORDS.values():
    _BY_KIND.setdefault(_word.kind, set()).add(key(_word))


def is_word(value, kind):
    return isinstance(value, str) and key(value) in _BY_KIND[kind]


def one_spelling_each(names):
    """{key: spelling} of names, preferring a spelling with a capital first."""
    chosen = {}
    for name in names:
        known = chosen.get(key(name))
        if known is None or (name[:1].isupper() and not known[:1].isupper()):
            chosen[key(name)] = name
    return chosen


def spellings(kind):
    """The words of a kind, one spelling of each."""
    return list(one_spelling_each(w for w in WORDS.values() if w.kind == kind).values())


def any_word(value):
    return isinstance(value, str) and any(key(value) in words for words in _BY_KIND.values())


# How a message names what a value should have been.
NUMBER, OBJECT, SOUND = "number", "object", "sound"
KIND_NAMES = {
    "direction": "a direction", "resize": "a direction", "color": "a color",
    "surface": "a place", "style": "a style", "howmuch": "a HowMuch value",
    "rubber": "LikeRubber", "value": "Yes, No or Toggle", "filling": "a filling style",
    "lighting": "a lighting style", "all": "All", "event": "an event", NUMBER: "a number",
}

# The kinds of each command's values, in the order a line gives them, and of
# the options it names: what a name that Vessa does not know should have been.
VALUE_KINDS = {
    "Move": ("direction", NUMBER), "Turn": ("direction", NUMBER), "Roll": ("direction", NUMBER),
    "Nudge": ("direction", NUMBER), "Resize": ("resize", NUMBER), "PointAt": (OBJECT,),
    "SetColor": ("color",), "Place": ("surface", OBJECT), "AlignWith": (OBJECT,),
    "BecomeChildOf": (OBJECT,), "Wait": (NUMBER,), "PlaySound": (SOUND,),
}
OPTION_KINDS = {"AsSeenBy": OBJECT, "Duration": NUMBER, "Speed": NUMBER, "Style": "style",
                "Volume": NUMBER, "Distance": NUMBER}
