"""Buttons made on the fly from lines of the world's Python.

The user selects lines of the world's Python and makes a button of them; each
press of the button runs those lines in the world as it is then, running or
not, as one undo step. A world loaded anew drops the buttons: their lines were
written for the world before.
"""

import textwrap

from . import runner as runners

TAG = "<On The Fly>"
MOST_BUTTONS = 20           # a row of buttons under the camera view, not a wall
CAPTION_LENGTH = 24         # characters of a button's caption


def caption_of(text):
    """The button's caption: its first line of code, shortened with '...'."""
    for line in runners.split_lines(text):
        line = line.strip()
        if line and not line.startswith("#"):
            if len(line) > CAPTION_LENGTH:
                return line[:CAPTION_LENGTH - 3].rstrip() + "..."
            return line
    return ""


class OnTheFlyButtons:
    def __init__(self, runner):
        self._runner = runner
        self._buttons = []      # [caption, text], in the order they were made

    def make(self, text):
        """None when the button is made, or when the lines have a mistake,
        which the user is told of as of any of their code (no button then);
        otherwise why no button can be made. Lines selected inside a block
        lose the indentation they share."""
        text = textwrap.dedent(str(text))
        if not caption_of(text):
            return "There are no lines of code to make a button of."
        if len(self._buttons) >= MOST_BUTTONS:
            return "There are %d buttons already; no more can be made." % MOST_BUTTONS
        if self._runner.compiles(text, TAG):
            self._buttons.append([caption_of(text), text])
        return None

    def press(self, number):
        """Runs the lines of button number (from 1); a mistake in them is the
        user's, told as any other."""
        try:
            number = int(number)
        except (TypeError, ValueError):
            number = 0
        if not 1 <= number <= len(self._buttons):
            return "There is no on-the-fly button %s." % (number,)
        return self._runner.execute(self._buttons[number - 1][1], TAG, "exec")

    def rows(self):
        """[number, caption] of each button."""
        return [[number, caption] for number, (caption, _) in enumerate(self._buttons, 1)]

    def forget(self):
        self._buttons = []
