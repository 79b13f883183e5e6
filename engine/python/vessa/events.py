"""Events of the camera window and the responses a world attaches to them.

A response is a function, called with the event, or an animation, of which a
copy is played each time the event happens.
"""

from . import vocabulary as v
from .animation import Animation
from .mistakes import Mistake


class Event:
    """What a response learns: ev.key ("A"), ev.rawkey (65), ev.object."""

    def __init__(self, kind, key="", rawkey=0, thing=None):
        self.kind, self.key, self.rawkey, self.object = kind, key, rawkey, thing

    def __repr__(self):
        return "<%s %r %d>" % (self.kind, self.key, self.rawkey)


class Responses:
    def __init__(self):
        self._by_event = {}

    def add(self, event, response):
        if not v.is_word(event, "event"):
            raise Mistake("response_event")
        if not (callable(response) or isinstance(response, Animation)):
            raise Mistake("response_what")
        self._by_event.setdefault(v.key(event), []).append(response)

    def remove(self, event, response):
        listed = self._by_event.get(v.key(event), [])
        if response in listed:
            listed.remove(response)

    def get(self, kind):
        return list(self._by_event.get(v.key(kind), []))

    def copy(self):
        return {event: list(listed) for event, listed in self._by_event.items()}

    def restore(self, copied):
        self._by_event = {event: list(listed) for event, listed in copied.items()}


class Window:
    """The camera's window (`Camera._Window`): events anywhere in the view."""

    def __init__(self):
        self.responses = Responses()

    def addresponse(self, event, response):
        self.responses.add(event, response)

    def removeresponse(self, event, response):
        self.responses.remove(event, response)


def respond(responses, event, call_user_code):
    """Plays every response to event; call_user_code(function, event) runs a
    function of the world and reports its failure."""
    for response in responses:
        if isinstance(response, Animation):
            response.Copy().Start()
        else:
            call_user_code(response, event)
