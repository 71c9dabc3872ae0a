#!/usr/bin/env python3
"""Builds a program with gfortran, runs it on gfortran's run-time and on ours, and compares.

    run.py [--build BUILD] PROGRAM...

What a program prints on standard output, its exit status and the files that it leaves must be
equal byte for byte. Standard error isn't compared, since the texts of failures are ours.
Comments at the head of a program say what is out of the ordinary (`!`, `C` or `//` in front):

    build: COMMAND   in place of the usual one. $FC and $CC are the compilers, $SRC the folder
                     of the sources, $PROGRAM what is to be made, $LINK the library under test
                     (nothing for the peer), $FLAGS the sanitizers' flags
    flags: FLAGS     for the compiler, besides the usual ones
    run: COMMAND     how it is run, `$PROGRAM` if nothing is said; each such line is one run.
                     $PRELOAD is LD_PRELOAD=... of the library in a program with `preload`
    preload          the program is linked with gfortran's run-time both times
    entries: REGEX   more of gfortran's entries, besides those of I/O, that must be the library's
    stderr           standard error is compared too
    status: WHAT     the exit status isn't 0: `same`, or `any` where it needn't be equal

Where PROGRAM.expected stands beside a program, that is what it must print: gfortran gets it wrong.
"""

import argparse
import difflib
import os
import re
import shutil
import subprocess
import sys
import tempfile

FOLDER = os.path.dirname(os.path.abspath(__file__))
TIME_LIMIT = 60


def directives(path):
    found = {"build": [], "flags": [], "run": [], "preload": [], "stderr": [], "status": [],
             "entries": []}
    with open(path, encoding="utf-8") as file:
        for line in file:
            match = re.match(r"\s*(?:!|C|//)\s+(build|flags|run|status|entries): (.*)$", line)
            if not match:
                match = re.match(r"\s*(?:!|C|//)\s+(preload|stderr)()\s*$", line)
            if match:
                found[match[1]].append(match[2])
            elif not re.match(r"\s*(!|C|\*|//|$)", line):
                break
    return found


def exported(library):
    names = subprocess.run(["nm", "-D", "--defined-only", library], capture_output=True,
                           text=True, check=True).stdout
    return {line.split()[-1].split("@")[0] for line in names.splitlines() if line.split()}


def needed_entries(folder, more):
    """The entries of I/O, and of more, that the built program and its libraries call."""
    names = set()
    pattern = "|".join(["(?:st|transfer)_\\w+"] + more)
    for file in os.listdir(folder):
        listing = subprocess.run(["nm", "-D", "--undefined-only", os.path.join(folder, file)],
                                 capture_output=True, text=True).stdout
        names |= set(re.findall(rf"\bU (_gfortran_(?:{pattern}))\b", listing))
    return names


class Side:
    """A build of the program and what came of its runs."""

    def __init__(self, source, words, work, name, library, sanitize):
        self.words, self.sanitize = words, sanitize
        self.bin = os.path.join(work, name, "bin")
        self.runs = os.path.join(work, name, "run")
        os.makedirs(self.bin)
        linked = library if library and not words["preload"] else ""
        self.env = dict(
            os.environ, FC="gfortran -w " + " ".join(words["flags"]), CC="gcc -w", SRC=FOLDER,
            PROGRAM=os.path.join(self.bin, "program"), BIN=self.bin,
            LINK=f"{linked} -Wl,-rpath,{os.path.dirname(linked)}" if linked else "",
            FLAGS="-fsanitize=address,undefined" if sanitize and library else "",
            PRELOAD=f"LD_PRELOAD={library}" if library and words["preload"] else "A=")
        for key in list(self.env):
            if key.startswith("GFORTRAN_"):
                del self.env[key]
        self.source = source

    def make(self):
        command = " && ".join(self.words["build"]) or \
            f"$FC $FLAGS $SRC/{self.source} $LINK -o $PROGRAM"
        made = subprocess.run(["bash", "-c", command], env=self.env, cwd=self.bin,
                              capture_output=True, text=True)
        if made.returncode != 0:
            sys.exit(f"{self.source} doesn't build: {command}\n{made.stderr[-3000:]}")

    def run(self, number, command):
        """Everything that can be seen of a run: a list of (name, bytes)."""
        work = os.path.join(self.runs, str(number))
        os.makedirs(work)
        try:
            ran = subprocess.run(["bash", "-c", command], env=self.env, cwd=work,
                                 stdin=subprocess.DEVNULL, capture_output=True,
                                 timeout=TIME_LIMIT)
        except subprocess.TimeoutExpired as late:
            return [("standard output", late.stdout or b""), ("exit status", b"out of time"),
                    ("standard error", late.stderr or b"")]
        seen = [("standard output", ran.stdout),
                ("exit status", str(ran.returncode).encode()),
                ("standard error", ran.stderr)]
        for folder, _, files in sorted(os.walk(work)):
            for file in sorted(files):
                path = os.path.join(folder, file)
                with open(path, "rb") as opened:
                    seen.append(("file " + os.path.relpath(path, work), opened.read()))
        return seen


def show(name, expected, got):
    if expected == got:
        return
    print(f"   {name} differs:")
    before = expected.decode("latin-1").split("\n")
    after = got.decode("latin-1").split("\n")
    lines = list(difflib.unified_diff(before, after, "expected", "got", n=1, lineterm=""))
    for line in lines[:60]:
        print("      " + line[:300])
    if not lines:
        print("      only line ends or bytes that don't print")


def compare(command, words, peer, ours):
    expected, got = dict(peer), dict(ours)
    skip = set() if words["stderr"] else {"standard error"}
    if "any" in words["status"]:
        skip.add("exit status")
    names = [n for n in list(expected) + [n for n in got if n not in expected] if n not in skip]
    wrong = [n for n in names if expected.get(n) != got.get(n)]
    if wrong:
        print(f"   run: {command}")
    for name in wrong:
        if name not in got or name not in expected:
            print(f"   {name} " + ("is missing" if name not in got else "is too much"))
        else:
            show(name, expected[name], got[name])
    if wrong and "standard error" not in wrong:
        print("   standard error:\n      " +
              got["standard error"].decode("latin-1")[-800:].replace("\n", "\n      "))
    return not wrong


def told(path):
    """What the run is to be where the peer is no measure; None: it is."""
    text = os.path.splitext(path)[0] + ".expected"
    if not os.path.exists(text):
        return None
    with open(text, "rb") as file:
        return [("standard output", file.read()), ("exit status", b"0"), ("standard error", b"")]


def check(source, library, options):
    path = source if os.path.exists(source) else os.path.join(FOLDER, source)
    source = os.path.relpath(os.path.abspath(path), FOLDER)
    words = directives(path)
    work = tempfile.mkdtemp(prefix="program-")
    good = True
    try:
        peer = Side(source, words, work, "peer", "", options.sanitize)
        ours = Side(source, words, work, "ours", library, options.sanitize)
        for side in (peer, ours):
            side.make()
        foreign = needed_entries(peer.bin, words["entries"]) - exported(library)
        if foreign:
            print(f"   the library lacks: {' '.join(sorted(foreign))}")
            good = False
        for number, command in enumerate(words["run"] or ["$PROGRAM"]):
            expected = told(path) or peer.run(number, command)
            if dict(expected)["exit status"] != b"0" and not words["status"]:
                print(f"   the peer fails: {command}")
                show("standard error", b"", dict(expected)["standard error"])
                good = False
            good &= compare(command, words, expected, ours.run(number, command))
            if options.verbose:
                for name, content in expected:
                    print(f"--- {name}\n" + content.decode("latin-1")[:options.verbose])
    finally:
        shutil.rmtree(work, ignore_errors=True)
    print(f"{'same' if good else 'DIFFERENT'}: {source}")
    return good


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--build", default="build", help="folder in which the library was built")
    parser.add_argument("--library", dest="tested", help="the library under test")
    parser.add_argument("--sanitize", action="store_true", help="it was built with sanitizers")
    parser.add_argument("--verbose", type=int, default=0, help="show so much of what is expected")
    parser.add_argument("programs", nargs="+")
    options = parser.parse_args()
    library = os.path.abspath(options.tested or os.path.join(options.build, "libtarnlibc.so"))
    if not shutil.which("gfortran"):
        sys.exit("gfortran is missing: there is nothing to compare with")
    results = [check(program, library, options) for program in options.programs]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())
