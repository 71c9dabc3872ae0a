#!/usr/bin/env python3
"""The report that TARN_REPORT asks for, as text and as JSON.

usage: report_files.py BUILD SOURCE_FOLDER
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile

build, sources = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
environment = {k: v for k, v in os.environ.items() if not k.startswith(("GFORTRAN_", "TARN"))}
faults = []


def check(good, what):
    if not good:
        faults.append(what)


def run(program, word, name):
    return subprocess.run([program, word], env=environment | {"TARN_REPORT": name}, timeout=60,
                          capture_output=True, check=False)  # fmt: skip


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    for name in ("faults", "modules"):
        pathlib.Path(name + ".f90").write_text((sources / (name + ".f90")).read_text())
        command = [build / "bin/tarnfc", "-w", "-O1", name + ".f90", "-o", name]
        subprocess.run(command, check=True)

    run("./faults", "quotient", "fault.txt")
    report = json.loads(pathlib.Path("fault.txt.json").read_text())
    check(report["kind"] == "exception" and report["number"] == 0xC0000095, "kind and number")
    check(report["cause"] == "Integer overflow", "the cause")
    check((report["routine"], report["file"]) == ("Faulty::Divide", "faults.f90"), "where")
    check(report["callers"][1]["routine"] == "Main_Thing", "the caller")
    check(report["line"] == report["callers"][0]["line"] > 0, "the line")
    check(int(report["registers"]["rip"], 16) == int(report["callers"][0]["address"], 16), "rip")
    check(any(m["path"].endswith("/faults") for m in report["modules"]), "the program's module")
    text = pathlib.Path("fault.txt").read_text()
    for wanted in ("Integer overflow at address ", "    called by Main_Thing, faults.f90:", "rax=",
                   "flgs=", "mxcsr=", "st(7)=", "/faults\n", "Versions: tarnlibc "):  # fmt: skip
        check(wanted in text, f"the text lacks {wanted!r}")

    ended = run("./modules", "format", "failure-%p.txt")
    named = list(pathlib.Path().glob("failure-*.txt.json"))
    check(len(named) == 1 and "%" not in named[0].name, "the process's number in the name")
    report = json.loads(named[0].read_text())
    check(report["kind"] == "failure" and report["number"] > 0, "a failure's kind and number")
    check(report["callers"][2]["times"] == 4, "the calls that are repeated")
    check(ended.returncode == 1, "a failure's status")

    ended = run("./faults", "divide", "no/such/folder/report")
    check(b"could not be written to no/such/folder/report.json: No such file" in ended.stderr,
          "a folder that is missing")  # fmt: skip
    check(b"in Faulty::Divide" in ended.stderr, "the report, all the same")

for fault in faults:
    print(fault)
sys.exit(bool(faults))
