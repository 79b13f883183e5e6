"""Vessa47's engine: the world's language, its scene and the gateway object
`Interpreter` whose methods the front end calls by name."""

from .interpreter import Interpreter

__all__ = ["Interpreter"]
