"""Errors whose message is written for the person who wrote the world.

Every message a novice can be shown stands in MESSAGES, in the world's words:
the names of objects, commands, options and values as a script line spells
them, never a Python type. A message about a name that is nearly a known
one ends by suggesting it.
"""

import difflib
import functools
import inspect

from . import vocabulary

MESSAGES = {
    # a name that names nothing
    "no_object": "There is no object called {name}.",
    "no_sound": "There is no sound called {name}.",
    "no_command": "There is no command called {name}.",
    "no_part_or_command": "{object} has no part or command called {name}.",
    "no_animation_command": "An animation has no command called {name}.",
    "no_command_of": "{object} has no command called {name}.",
    "not_a_word": "{name} is not {kind}.",
    "unknown_name": "Vessa does not know the name {name}.",
    # how a message goes on
    "did_you_mean": " Did you mean {near}?",
    "capitals": " Did you mean {near}? Capital letters count.",
    "choices": " It can be {words}.",
    # the values of a command
    "no_option": "{command} has no option {name}.",
    "too_many_values": "{command} takes {most}, not {given}.",
    "missing_values": "{command} needs {count} more.",
    "given_twice": "{command} was given {name} twice.",
    "needs": "{object}.{command} needs {wants}.",
    "duration": "{object}.{command}: Duration must be a number of seconds, such as 1.",
    "volume": "{object}.PlaySound: Volume must be a number, such as 0.5.",
    "look_style": "{object}: the style must be {styles}.",
    "own_parent": "{object} can't become a child of {other}.",
    "destroyed": "{object} has been destroyed, so it can't {command} any more.",
    "response_event": "addresponse needs an event, such as LeftMouseDown or KeyDown, "
                      "and then what to do.",
    "response_what": "addresponse needs an animation or a function to run.",
    # names given to objects and sounds
    "bad_name": "{object} can't be called {name}: {why}.",
    "bad_sound_name": "The sound {sound} can't be called {name}: {why}.",
    "why_letters": "a name has letters, digits and _ only, and starts with a letter",
    "why_reserved": "{name} is a word that Vessa or Python uses already",
    "why_taken": "{taken} has that name already",
    "why_taken_case": "{taken} has that name already, and capital letters don't make it new",
    # what only a world the user trusts may do
    "not_allowed": "This world's code may not {what}. Only a world you trust may do that.",
    # a line that is the world's own, not hand-written Python
    "cant_read": "Vessa can't read this line: {reason}",
    "cant_do": "Vessa can't do this line: {reason}",
}


def text(key, **values):
    return MESSAGES[key].format(**values)


def sentence(words):
    """words ending as a sentence does."""
    words = (words or "").strip()
    return words if words.endswith((".", "?", "!")) else words + "."


def listed(words):
    """"A, B or C"."""
    words = list(words)
    return words[0] if len(words) == 1 else ", ".join(words[:-1]) + " or " + words[-1]


def counted(n):
    return {0: "no values", 1: "one value"}.get(n, "%d values" % n)


def nearest(name, candidates):
    """The candidate that name most likely meant, or None. A candidate that
    differs only in capitals wins; of several spellings of one word, the
    one with a capital first is suggested."""
    by_key = vocabulary.one_spelling_each(candidates)
    wanted = vocabulary.key(name)
    if wanted in by_key:
        return by_key[wanted]
    close = difflib.get_close_matches(wanted, list(by_key), n=1, cutoff=0.7)
    return by_key[close[0]] if close else None


def suggestion(name, among):
    """" Did you mean ...?" with the name of among nearest to name, or ""."""
    near = nearest(name, among)
    if near is None or near == name:
        return ""
    return text("capitals" if vocabulary.key(near) == vocabulary.key(name) else "did_you_mean",
                near=near)


class Mistake(Exception):
    """Raised by the engine when a world asks for something it can't do; the
    message is shown as it stands, without the exception's name.

    among: the names that the value `name` may have meant (or a function
    answering them, asked only when the message is read); choices: the
    values to list when none is near."""

    def __init__(self, key, among=None, choices=None, **values):
        super().__init__(key)
        self.values = values
        self._template = MESSAGES[key]      # every message stands in the table
        self._among, self._choices = among, choices

    def __str__(self):
        message = self._template.format(**self.values)
        name = self.values.get("name")
        among = self._among() if callable(self._among) else self._among
        hint = suggestion(name, among) if among is not None and name is not None else ""
        if not hint and self._choices:
            hint = text("choices", words=listed(self._choices))
        return message + hint


class NoSuchAttribute(Mistake, AttributeError):
    """A part or command that an object doesn't have: still an
    AttributeError, so that getattr() with a default and hasattr() work."""


def checked(cls):
    """Class decorator: a call of a public method with values it can't take
    (an unknown option, too many values) is told in the world's words."""
    for klass in reversed(cls.__mro__[:-1]):
        for name, member in list(vars(klass).items()):
            if inspect.isfunction(member) and not name.startswith("_"):
                setattr(cls, name, _told_in_world_words(member))
    return cls


def _told_in_world_words(function):
    signature = inspect.signature(function)

    @functools.wraps(function)
    def call(*args, **kwargs):
        try:
            return function(*args, **kwargs)
        except TypeError:
            try:
                signature.bind(*args, **kwargs)
            except TypeError:
                raise _call_mistake(function, signature, args[1:], kwargs) from None
            raise       # the values fit: the method itself failed
    return call


def _call_mistake(function, signature, args, kwargs):
    """What is wrong with calling function (a method) with args and kwargs."""
    command = function.__name__
    parameters = list(signature.parameters.values())[1:]
    by_keyword = [p.name for p in parameters
                  if p.kind in (p.POSITIONAL_OR_KEYWORD, p.KEYWORD_ONLY)]
    for keyword in kwargs:
        if keyword not in by_keyword:
            return Mistake("no_option", among=by_keyword, command=command, name=keyword)
    positional = [p for p in parameters if p.kind in (p.POSITIONAL_ONLY, p.POSITIONAL_OR_KEYWORD)]
    if len(args) > len(positional) and not any(p.kind == p.VAR_POSITIONAL for p in parameters):
        return Mistake("too_many_values", command=command, most=counted(len(positional)),
                       given=len(args))
    for parameter in positional[:len(args)]:
        if parameter.name in kwargs:
            return Mistake("given_twice", command=command, name=parameter.name)
    missing = [p for p in parameters[len(args):] if p.default is p.empty
               and p.kind in (p.POSITIONAL_OR_KEYWORD, p.KEYWORD_ONLY) and p.name not in kwargs]
    return Mistake("missing_values", command=command, count=counted(len(missing)))


def not_a_word(value, kind, allowed=None):
    """value is no word of kind (of those whose key is in allowed, if given)."""
    words = [w for w in vocabulary.spellings(kind) if allowed is None or vocabulary.key(w) in allowed]
    return Mistake("not_a_word", among=words, choices=words, name=value,
                   kind=vocabulary.KIND_NAMES[kind])
