#!/usr/bin/env python3
"""Builds a program in the native dialect, runs it, and compares byte for byte.

usage: run.py BUILD PROGRAM.f90

PROGRAM.expected holds what the program prints on standard output. Lines at the program's head say
the rest:
    ! input: text         standard input, with \\n for line ends
    ! status: n           the exit status, 0 unless told
    ! error: text         something that standard error must hold
    ! gnu: parts/x.f90    another source, compiled in the gnu dialect
"""
import pathlib
import subprocess
import sys
import tempfile


def heading(source):
    wanted = {"input": "", "status": "0", "error": "", "gnu": ""}
    for line in source.read_text().splitlines():
        if not line.startswith("! "):
            break
        key, told, value = line[2:].partition(": ")
        if told:
            wanted[key] = value
    return wanted


def main():
    build, source = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    wanted = heading(source)
    tarnfc = build / "bin" / "tarnfc"
    with tempfile.TemporaryDirectory() as folder:
        objects = []
        for dialect, file in (("native", source), ("gnu", wanted["gnu"] and source.parent / wanted["gnu"])):
            if file:
                objects.append(f"{dialect}.o")
                subprocess.run([tarnfc, f"--dialect={dialect}", "-fopenmp", "-w", "-c", file, "-o", objects[-1]],
                               cwd=folder, check=True)
        subprocess.run([tarnfc, "-fopenmp", *objects, "-o", "program"], cwd=folder, check=True)
        run = subprocess.run(["./program"], cwd=folder, capture_output=True,
                             input=wanted["input"].encode().decode("unicode_escape").encode())
    expected = source.with_suffix(".expected").read_bytes()
    complaints = []
    if run.stdout != expected:
        ours, theirs = run.stdout.split(b"\n"), expected.split(b"\n")
        different = [i for i in range(max(len(ours), len(theirs))) if ours[i:i + 1] != theirs[i:i + 1]]
        complaints.append(f"line {different[0] + 1}: {ours[different[0]:][:1]} in place of {theirs[different[0]:][:1]}")
    if run.returncode != int(wanted["status"]):
        complaints.append(f"status {run.returncode} in place of {wanted['status']}")
    if wanted["error"].encode() not in run.stderr:
        complaints.append(f"standard error: {run.stderr!r}")
    if len(sys.argv) > 3 and sys.argv[3] == "--accept":
        source.with_suffix(".expected").write_bytes(run.stdout)
    sys.exit("\n".join(complaints) or 0)


main()
