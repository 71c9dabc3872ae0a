"""The lines of a report that name routines and callers, which its other lines are compared without."""

import re

CALLERS = re.compile(
    r"^    (?:in (?!.*, line )|called by |\(for files and lines, |\.\.\. ).*\n"
    r"|^        \((?:this call|these) .*\n",
    re.MULTILINE,
)


def without_callers(text):
    return CALLERS.sub("", text)
