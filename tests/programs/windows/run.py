#!/usr/bin/env python3
"""Builds a program with windows, plays its event script on the memory display, and compares.

usage: run.py BUILD PROGRAM

PROGRAM.events is the script (none: nobody answers), PROGRAM.expected what the program prints on
standard output, with the exit status in its last line; PROGRAM.error, where it stands, holds lines
that standard error must have.
"""
import os
import pathlib
import subprocess
import sys
import tempfile

DRIVERS = {".f90": ["tarnfc"], ".f": ["tarnfc"], ".c": ["tarncc"], ".cpp": ["tarnc++", "-std=c++20"]}


def build_program(build, source, folder):
    driver = DRIVERS[source.suffix]
    command = [build / "bin" / driver[0], *driver[1:], source, "-o", "program"]
    subprocess.run(command, cwd=folder, check=True)


def environment(source):
    out = {name: value for name, value in os.environ.items() if not name.startswith("TARN_")}
    out.update(TARN_DISPLAY="memory", TARN_TIMEOUT="10", LC_ALL="C.UTF-8")
    out["TARNENVAR"] = "no_traceback"  # callers are tested elsewhere
    # What a sanitizer keeps of freed storage isn't growth.
    out["ASAN_OPTIONS"] = ":".join(filter(None, [out.get("ASAN_OPTIONS"), "quarantine_size_mb=1"]))
    script = source.with_suffix(".events")
    if script.exists():
        out["TARN_EVENTS"] = str(script)
    return out


def main():
    build, source = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    with tempfile.TemporaryDirectory() as folder:
        build_program(build, source, folder)
        run = subprocess.run(["./program"], cwd=folder, env=environment(source), timeout=120,
                             stdin=subprocess.DEVNULL, capture_output=True, check=False)
    shown = run.stdout.decode() + f"status {run.returncode}\n"
    expected = source.with_suffix(".expected")
    if "--accept" in sys.argv:
        expected.write_text(shown)
    complaints = []
    if shown != expected.read_text():
        complaints.append(f"it printed:\n{shown}in place of:\n{expected.read_text()}")
    errors = source.with_suffix(".error")
    for line in errors.read_text().splitlines() if errors.exists() else []:
        if line not in run.stderr.decode():
            complaints.append(f"standard error lacks: {line}")
    if complaints:
        complaints.append("standard error:\n" + run.stderr.decode())
    sys.exit("\n".join(complaints) or 0)


main()
