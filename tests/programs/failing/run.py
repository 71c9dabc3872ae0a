#!/usr/bin/env python3
"""Builds a program that fails, in several ways, and looks for what its report must say.

usage: run.py BUILD PROGRAM

The head of the program tells, in comment lines that begin with //> or !>:
    runs: WORD...       each word is one run's argument (default: one run without one)
    report: TEXT        a line that standard error must have, in this order, leading blanks aside
    WORD: TEXT          the same, for the run of that word only
    not: TEXT           what no line may hold
    options: WORD...    more of the compiler's options
    without: OPTION     builds that have this option are left out
A `*` in a line's text stands for anything, and `@name` for the file and line, as a report writes
them, of the one line of the program that ends with a comment `@name`.
"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

DRIVERS = {".f90": "tarnfc", ".c": "tarncc", ".cpp": "tarnc++"}
KINDS = ("failure", "exception", "signal")
BUILDS = [["-O0"], ["-O2"], ["-O2", "-no-pie"], ["-O1", "-s"], ["-O2", "-flto"]]


def places_in(source):
    places = {}
    for number, line in enumerate(source.read_text().splitlines(), 1):
        match = re.search(r"(?:// |! |/\* )@(\w+)(?: \*/)?$", line)
        if match is not None:
            assert match[1] not in places, match[1]
            places[match[1]] = f"{source.name}:{number}"
    return places


def read_head(source):
    words, lines, never, options, builds = [], [], [], [], BUILDS
    places = places_in(source)
    for line in source.read_text().splitlines():
        match = re.match(r"(?://|!)> (\w+): (.*)$", line)
        if match is None:
            continue
        if match[1] == "runs":
            words = match[2].split()
        elif match[1] == "options":
            options = match[2].split()
        elif match[1] == "without":
            builds = [each for each in builds if match[2] not in each]
        elif match[1] == "not":
            never.append(match[2])
        else:
            text = re.sub(r"@(\w+)", lambda mark: places[mark[1]], match[2])
            lines.append((match[1], text))
    return words or [""], lines, never, options, builds


def is_like(line, text):
    pattern = ".*".join(re.escape(part) for part in text.split("*"))
    return re.fullmatch(pattern, line) is not None


def faults_of(report, wanted, never):
    shown = [line.strip() for line in report.splitlines()]
    at = 0
    for text in wanted:
        while at < len(shown) and not is_like(shown[at], text):
            at += 1
        if at == len(shown):
            yield f"no line (behind the others) is: {text}"
            return
        at += 1
    for text in never:
        if any(text in line for line in shown):
            yield f"a line holds: {text}"


def faults_of_json(folder, report):
    """The same report for programs to read: it tells what the text tells."""
    first = re.search(r"^    in (.*?)(?:, ([^,]*):(\d+))?$", report, re.MULTILINE)
    path = pathlib.Path(folder) / "report.json"
    if first is None or not path.exists():
        if first is not None:
            yield "no JSON"
        return
    told = json.loads(path.read_text())
    if first[2] is not None:
        if (told["routine"], told["file"], told["line"]) != (first[1], first[2], int(first[3])):
            yield f"JSON has {told['routine']}, {told['file']}:{told['line']}"
    if not (told["cause"] and told["registers"]["rip"] and told["modules"] and told["versions"]):
        yield "JSON lacks something"
    if told["callers"][0]["routine"] != told["routine"] or told["kind"] not in KINDS:
        yield "JSON contradicts itself"
    path.unlink()


def main():
    build, source = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    words, lines, never, more, builds = read_head(source)
    environment = {k: v for k, v in os.environ.items() if not k.startswith(("GFORTRAN_", "TARN"))}
    environment["TARN_REPORT"] = "report"
    failed = False
    with tempfile.TemporaryDirectory() as folder:
        # By its bare name, which the reports show.
        (pathlib.Path(folder) / source.name).write_text(source.read_text())
        for options in builds:
            driver = build / "bin" / DRIVERS[source.suffix]
            command = [driver, "-w", *options, *more, source.name, "-o", "program"]
            subprocess.run(command, cwd=folder, check=True)
            for word in words:
                run = subprocess.run(["./program"] + [word] * (word != ""), cwd=folder, timeout=60,
                                     env=environment, stdin=subprocess.DEVNULL,
                                     capture_output=True, check=False)  # fmt: skip
                report = run.stderr.decode(errors="replace")
                wanted = [text for name, text in lines if name in ("report", word)]
                faults = list(faults_of(report, wanted, never))
                faults += faults_of_json(folder, report)
                if run.returncode == 0:
                    faults.append("the exit status is 0")
                for fault in faults:
                    failed = True
                    print(f"{' '.join(options)} {word}: {fault}")
                if faults:
                    print(report)
    sys.exit(failed)


main()
