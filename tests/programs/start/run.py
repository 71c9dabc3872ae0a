#!/usr/bin/env python3
"""Builds and runs one program against the library of a build and checks what comes of it.

usage: run.py BUILD PROGRAM

The head of the program tells, in comment lines that begin with //> or !>:
    start: fortran | c | native_fortran | native_c | none | preload
                        the start-up object; none: without one; preload: built without the library,
                        which is preloaded (default: by the language)
    flags: ...          for the compiler
    with: FILE          another source of this folder, compiled by its own compiler
    args: ...           for the program
    env: NAME=VALUE     repeated
    stdin: LINE         repeated
    status: N           default 0
    out: LINE, err: LINE    what it writes, line by line; exact;
                        but for the callers in a report
    err~: REGEX         standard error as a whole matches instead
    stdout: FILE        where standard output goes; `closed` is a pipe that nobody reads
    file: NAME          what follows in `out:` is this file's text instead
More than one `run:` line starts another run of the same program with lines of its own.
"""
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

FOLDER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.dirname(FOLDER))
from callers import without_callers  # noqa: E402

INCLUDE = os.path.join(FOLDER, "../../../include")
COMPILERS = {".c": "gcc", ".cpp": "g++", ".f90": "gfortran"}


class Run:
    def __init__(self):
        self.args, self.env, self.stdin, self.out, self.err = [], {}, [], [], []
        self.status, self.pattern, self.stdout, self.file = 0, None, None, None


def read_head(path):
    build = {"start": None, "flags": [], "with": []}
    runs = [Run()]
    for line in open(path, encoding="utf-8"):
        match = re.match(r"(?://|!)> ?([a-z]+~?):(?: (.*))?$", line.rstrip("\n"))
        if not match:
            continue
        key, value = match.group(1), match.group(2) or ""
        run = runs[-1]
        if key == "run":
            runs.append(Run())
        elif key == "start":
            build["start"] = value
        elif key == "flags":
            build["flags"] = shlex.split(value)
        elif key == "with":
            build["with"].append(value)
        elif key == "args":
            run.args = shlex.split(value)
        elif key == "env":
            name, _, setting = value.partition("=")
            run.env[name] = setting
        elif key == "status":
            run.status = int(value)
        elif key in ("stdin", "out", "err"):
            getattr(run, key).append(value)
        elif key in ("stdout", "file"):
            setattr(run, key, value)
        elif key == "err~":
            run.pattern = value
        else:
            sys.exit(f"{path}: what is {key}?")
    if len(runs) > 1:
        runs.pop(0)
    return build, runs


def compile_program(build_folder, path, build, output):
    suffix = os.path.splitext(path)[1]
    start = build["start"] or ("fortran" if suffix == ".f90" else "c")
    # In its own folder and by its bare name, which reports of failures show.
    folder, name = os.path.dirname(output), os.path.basename(path)
    shutil.copy(path, folder)
    command = [COMPILERS[suffix], "-g1", "-w", "-I" + INCLUDE, name, "-o", output]
    command += build["flags"]
    for other in build["with"]:
        source = os.path.join(os.path.dirname(path), other)
        compiled = os.path.join(folder, os.path.basename(other) + ".o")
        compiler = COMPILERS[os.path.splitext(other)[1]]
        subprocess.run([compiler, "-g1", "-w", "-c", source, "-o", compiled], check=True)
        command.append(compiled)
    if start not in ("none", "preload"):
        command.append(os.path.join(build_folder, "lib", f"tarn_start_{start}.o"))
    if start != "preload":
        command += ["-L" + build_folder, "-Wl,-rpath," + build_folder, "-ltarnlibc"]
        command.append("-Wl,--unresolved-symbols=ignore-in-shared-libs")
    subprocess.run(command, check=True, cwd=folder)
    return start


def text(lines):
    return "".join(line + "\n" for line in lines)


def standard_output(run):
    if run.stdout is None:
        return subprocess.PIPE
    if run.stdout == "closed":
        reader, writer = os.pipe()
        os.close(reader)
        return writer
    return open(run.stdout, "w", encoding="utf-8")


def check(build_folder, start, program, run):
    environment = {k: v for k, v in os.environ.items()
                   if not k.startswith(("GFORTRAN_", "TARN", "ORVAL"))}
    if start == "preload":
        environment["LD_PRELOAD"] = os.path.join(build_folder, "libtarnlibc.so")
    environment.update(run.env)
    folder = os.path.dirname(program)
    result = subprocess.run([program] + run.args, input=text(run.stdin), text=True, env=environment,
                            stdout=standard_output(run), stderr=subprocess.PIPE, timeout=60,
                            cwd=folder)
    faults = []
    shown = without_callers(result.stderr)
    # A signal's number is the shell's: 128 and the signal.
    status = result.returncode if result.returncode >= 0 else 128 - result.returncode
    if status != run.status:
        faults.append(f"status {status}, not {run.status}")
    written = without_callers(result.stdout or "")
    if run.file:
        with open(os.path.join(folder, run.file), encoding="utf-8") as file:
            written = file.read()
    if written != text(run.out):
        faults.append(f"output {written!r}, not {text(run.out)!r}")
    if run.pattern is not None:
        if not re.search(run.pattern, shown):
            faults.append(f"standard error {shown!r} doesn't match {run.pattern!r}")
    elif shown != text(run.err):
        faults.append(f"standard error {shown!r}, not {text(run.err)!r}")
    return faults


def main():
    build_folder, path = sys.argv[1:]
    build, runs = read_head(path)
    failed = False
    with tempfile.TemporaryDirectory() as folder:
        program = os.path.join(folder, "program")
        start = compile_program(build_folder, path, build, program)
        for number, run in enumerate(runs, 1):
            for fault in check(build_folder, start, program, run):
                print(f"run {number}: {fault}")
                failed = True
    sys.exit(failed)


main()
