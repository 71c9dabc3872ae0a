#!/usr/bin/env python3
"""Reports where they have it hard: the program dies of its fault and hangs nowhere, and what is known
is told, on standard error and in the files.

usage: hardship.py BUILD SOURCE_FOLDER
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile

build, sources = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
SEGV = -11
TOUCH = "    in touch, hardship.c:"
# The way, lines of the report, and how many callers the JSON has at least.
WAYS = [
    ("deep 10000", [TOUCH, "    called by deep, ", "(this call 10000 more times)"], 3),
    ("deep 1000000", [TOUCH, "(this call 1000000 more times)", "called by with_depth"], 3),
    ("worker", ["Stack overflow at address", "    in sink, hardship.c:"], 1),
    ("full", [TOUCH, "    called by main, hardship.c:"], 2),
    ("proc", [TOUCH, "    called by main, hardship.c:"], 2),
    ("closed", [], 2),
    ("ruined", [TOUCH, "    called by ruin_stack, hardship.c:"], 2),
    ("trap", [TOUCH, "    called by bad_trap, hardship.c:", "    called by main, "], 3),
    ("together", [TOUCH, "    called by on_thread, hardship.c:"], 2),
]  # fmt: skip
clean = {k: v for k, v in os.environ.items() if not k.startswith(("GFORTRAN_", "TARN"))}
faults = []


def check(good, what):
    if not good:
        faults.append(what)


def run(*command, **more):
    return subprocess.run(command, env=clean | more, timeout=60, capture_output=True, check=False)


def told(name):
    path = pathlib.Path(name + ".json")
    report = json.loads(path.read_text()) if path.exists() else {}
    path.unlink(missing_ok=True)
    return report


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    source = (sources / "hard/hardship.c").read_text()
    pathlib.Path("hardship.c").write_text(source)
    subprocess.run([build / "bin/tarncc", "-O1", "hardship.c", "-o", "hardship"], check=True)
    for way, lines, callers in WAYS:
        ended = run("./hardship", *way.split(), TARN_REPORT="report")
        if ended.returncode == 77:
            continue
        shown = ended.stderr.decode(errors="replace")
        check(ended.returncode == SEGV, f"{way}: status {ended.returncode}\n{shown}")
        check(shown.count("attempted to write") <= 1, f"{way}: two reports\n{shown}")
        for line in lines:
            check(line in shown, f"{way}: no {line!r} in\n{shown}")
        report = told("report")
        check(len(report.get("callers", [])) >= callers and len(report["modules"]) > 1,
              f"{way}: JSON {report}")  # fmt: skip
        check(report.get("program", "").endswith("hardship"), f"{way}: the program's name")

    # Files that can't be written.
    for link in ("full", "full.json"):
        os.symlink("/dev/full", link)
    for name in ("full", ".", "a" * 5000):
        ended = run("./hardship", TARN_REPORT=name)
        shown = ended.stderr.decode(errors="replace")
        check(ended.returncode == SEGV and TOUCH in shown, f"{name:.9}: {ended.returncode}\n{shown}")
        check("The report could not be written to" in shown, f"{name:.9}: no complaint\n{shown}")

    # A file at the limit of its length: other files still get what was written to them, and a
    # report that goes to a file of that kind itself is no second fault.
    pathlib.Path("long.f90").write_text(
        "print *, 'printed'\nopen(10, file='short')\nwrite(10, *) 'kept'\nopen(11, file='long')\n"
        "do i = 1, 100000\nwrite(11, *) i\nend do\nend\n")
    subprocess.run([build / "bin/tarnfc", "long.f90", "-o", "long-program"], check=True)
    for blocks, kept in (("8", " kept\n"), ("0", "")):
        pathlib.Path("short").unlink(missing_ok=True)
        limited = f"ulimit -f {blocks}; ./long-program 2> said | cat; exit ${{PIPESTATUS[0]}}"
        ended = run("bash", "-c", limited)
        check(ended.returncode == 128 + 25, f"limit {blocks}: status {ended.returncode}")
        check(ended.stdout == b" printed\n", f"limit {blocks}: {ended.stdout}")
        check(pathlib.Path("short").read_text() == kept, f"limit {blocks}: a file was lost")

    # Names that need care: in the files of JSON and in the report itself.
    odd = 'od"d \\ na\tme ü.c'
    pathlib.Path(odd).write_text(source.replace("touch", "gr\u00f6\u00dfe"))
    subprocess.run([build / "bin/tarncc", "-O1", odd, "-o", "odd"], check=True)
    run("./odd", TARN_REPORT="report")
    report = told("report")
    check((report.get("routine"), report.get("file")) == ("größe", odd), f"odd names: {report}")

    # Callers are left out of what is printed where the program was compiled so, never the cause.
    pathlib.Path("quiet.f90").write_text("integer, allocatable :: a(:)\ndeallocate(a)\nend\n")
    command = [build / "bin/tarnfc", "-fno-backtrace", "quiet.f90", "-o", "quiet"]
    subprocess.run(command, check=True)
    for more, wanted in (({}, False), ({"GFORTRAN_ERROR_BACKTRACE": "yes"}, True)):
        ended = run("./quiet", TARN_REPORT="report", **more)
        check(ended.returncode == 1 and b"DEALLOCATE failed" in ended.stderr, "quiet: the cause")
        check((b"    in main program, " in ended.stderr) == wanted, f"quiet: {ended.stderr}")
        check(told("report").get("line") == 2, "quiet: the file")

for fault in faults:
    print(fault)
sys.exit(bool(faults))
