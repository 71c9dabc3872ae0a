#!/usr/bin/env python3
"""A form at every scale: the places and sizes of its controls are the same, and each text has room.

usage: scales.py BUILD PROGRAM.c
"""
import ctypes
import ctypes.util
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile

SCALES = ["1", "1.25", "1.5", "2"]
SKIPPED = 77
EM = 12                    # of the system font, in logical pixels
UNHINTED = 2
MARKS = {"check box": 19, "radio button": 19, "button": 8}  # what stands beside the text
LINE = re.compile(r'\s+(label|button|check box|radio button) "((?:[^"\\]|\\.)*)".*? '
                  r'(-?\d+),(-?\d+) (\d+)x(\d+)$')


def shown(program, folder, scale):
    """The tree and the size of the picture."""
    environment = {name: value for name, value in os.environ.items() if not name.startswith("TARN_")}
    tree, script, picture = folder / "tree.txt", folder / "script", folder / "form.png"
    script.write_text('screenshot "form.png"\nclose\n')
    environment.update(TARN_DISPLAY="memory", TARN_SCALE=scale, TARN_EVENTS=str(script),
                       TARN_TREE=str(tree), TARN_TIMEOUT="10")
    run = subprocess.run([program], cwd=folder, env=environment, timeout=60,
                         stdin=subprocess.DEVNULL, capture_output=True, check=False)
    if run.returncode != 0:
        raise SystemExit(f"at scale {scale} it ended with {run.returncode}: {run.stderr.decode()}")
    return tree.read_text(), struct.unpack(">II", picture.read_bytes()[16:24])


class Font:
    """The advance widths of the system's font, asked of FreeType and not of the library."""

    def __init__(self, path):
        name = ctypes.util.find_library("freetype")
        if name is None:
            sys.exit(SKIPPED)
        self.freetype = ctypes.CDLL(name)
        library, self.face = ctypes.c_void_p(), ctypes.c_void_p()
        self.freetype.FT_Get_Char_Index.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
        self.freetype.FT_Get_Advance.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_int32,
                                                 ctypes.POINTER(ctypes.c_long)]
        wrong = (self.freetype.FT_Init_FreeType(ctypes.byref(library))
                 or self.freetype.FT_New_Face(library, os.fsencode(path), ctypes.c_long(0),
                                              ctypes.byref(self.face))
                 or self.freetype.FT_Set_Pixel_Sizes(self.face, 0, EM))
        if wrong:
            raise SystemExit(f"no font at {path}")

    def width(self, text):
        total, one = 0, ctypes.c_long()
        for letter in text:
            glyph = self.freetype.FT_Get_Char_Index(self.face, ord(letter))
            self.freetype.FT_Get_Advance(self.face, glyph, UNHINTED, ctypes.byref(one))
            total += one.value
        return total / 65536


def texts_without_room(tree, font):
    controls = [match.groups() for match in map(LINE.match, tree.splitlines()) if match]
    if len(controls) < 20:
        raise SystemExit(f"only {len(controls)} texts were found in\n{tree}")
    for kind, text, _x, _y, width, height in controls:
        wanted = font.width(text.replace("&", "")) + MARKS.get(kind, 0)
        if wanted > int(width) + 0.1 or int(height) < EM:
            yield f'{kind} "{text}" wants {wanted:.1f} and has {width}x{height}'


def main():
    build, source = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        subprocess.run([build / "bin/tarncc", source, "-o", "program"], cwd=folder, check=True)
        tree, size = shown(folder / "program", folder, "1")
        complaints = list(texts_without_room(
            tree, Font(build / "tarnlibc/fonts/LiberationSans-Regular.ttf")))
        for scale in SCALES[1:]:
            other, pixels = shown(folder / "program", folder, scale)
            if other != tree:
                complaints.append(f"at scale {scale} the tree is\n{other}in place of\n{tree}")
            if any(abs(p - s * float(scale)) > 1 for p, s in zip(pixels, size)):
                complaints.append(f"at scale {scale} the picture has {pixels} pixels, {size} at 1")
    sys.exit("\n".join(complaints) or 0)


main()
