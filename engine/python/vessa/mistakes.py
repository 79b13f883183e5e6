"""Errors whose message is written for the person who wrote the world."""


class Mistake(Exception):
    """Raised by the engine when a world asks for something it can't do; the
    message is shown as it stands, without the exception's name."""
