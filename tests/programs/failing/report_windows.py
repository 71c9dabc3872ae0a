#!/usr/bin/env python3
"""The windows in which a program with windows shows that it failed.

usage: report_windows.py BUILD SOURCE_FOLDER
"""
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile

build, sources = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
SEGV, FPE, ABRT = -signal.SIGSEGV, -signal.SIGFPE, -signal.SIGABRT

OPEN = 'click "Go"\nexpect window "Run-time Error"\n'
DETAILS = OPEN + 'click "Details"\nexpect window "Exception: *"\n'
CLOSE = 'click "Close"\n'
# The way to fail, what a user does, the status, and what the windows and standard error must show.
CASES = [
    ("null", DETAILS + 'tree "tree"\nkey Escape\n', SEGV,
     ["Access Violation", "in touch, callback.c:", "called by go, callback.c:",
      "called by main, callback.c:", "rax=", "flgs=", r'">[0-9a-f]+  mov']),
    ("null", DETAILS + 'click "Floating Point..."\ntree "tree"\nclick "Close"\nclick "Exit"\n', SEGV,
     ["mxcsr=", "xmm15=", r"st\(7\)="]),
    ("null", DETAILS + 'click "Memory..."\nexpect text "address" "00000000"\n'
     'expect value #3 "Read Access is not available on this address."\n'
     'type "400000\\n"\ntree "tree"\nclick "Close"\nkey X\n', SEGV,
     ["00400000 7f454c46 02010100 .* .ELF"]),
    ("null", DETAILS + 'key B 3\ntree "tree"\nfocus #3\nkey C\nkey X\n', SEGV,
     [r'value.*|" [0-9a-f]+  .*\\n>[0-9a-f]+  mov']),
    # The callers' box takes what the window has more.
    ("null", OPEN + 'resize 900 500\ntree "tree"\n' + CLOSE, SEGV, [r" 20,84 860x344\n"]),
    ("divide", OPEN + 'tree "tree"\n' + CLOSE, FPE,
     ["Integer divide by zero", "in go, callback.c:", "called by main"]),
    ("stack", OPEN + 'tree "tree"\n' + CLOSE, SEGV,
     ["Stack overflow", "in sink, callback.c:", r"this call \d+ more times", "called by go"]),
    ("abort", OPEN + 'tree "tree"\n' + CLOSE, ABRT, ["Program aborted", "in go, callback.c:"]),
    ("system", OPEN + 'tree "tree"\n' + CLOSE, SEGV, ["Access Violation", "libc", "called by go, callback.c:"]),
    ("timer", 'expect window "Run-time Error"\nwait 300ms\ntree "tree"\n' + CLOSE, SEGV,
     ["in touch, callback.c:", "called by tick, callback.c:"]),
    ("failure", OPEN + 'tree "tree"\nclick "Details"\nexpect text "No further details available with '
     'this error"\nkey Enter\n' + CLOSE, 1, ["Disk full", "in go, callback.c:"]),
    # Of another thread, while the windows' own waits for it, or is at rest.
    ("thread", OPEN + 'tree "tree"\n' + CLOSE, SEGV,
     ["Access Violation", "in touch, callback.c:", "called by faulty, callback.c:"]),
    ("later", OPEN + 'tree "tree"\n' + CLOSE, SEGV,
     ["Access Violation", "in touch, callback.c:", "called by late, callback.c:"]),
    # No window: what it needs is broken, or not there yet.
    ("smash", "click \"Go\"\n", ABRT, ["Program aborted.", "in smash, callback.c:"]),
    ("before", "", SEGV, ["in touch, callback.c:", "called by main, callback.c:"]),
]  # fmt: skip

faults = []


def check(good, what):
    if not good:
        faults.append(what)


def run(way, script, **more):
    pathlib.Path("script").write_text(script)
    for name in ("tree", "opened"):
        pathlib.Path(name).write_text("")
    clean = {k: v for k, v in os.environ.items() if not k.startswith(("TARN", "DISPLAY"))}
    clean.update(TARN_DISPLAY="memory", TARN_EVENTS="script", TARN_TIMEOUT="20",
                 PATH=f"{os.getcwd()}/bin:{os.environ['PATH']}", **more)  # fmt: skip
    return subprocess.run(["./callback", way], env=clean, timeout=60, stdin=subprocess.DEVNULL,
                          capture_output=True, text=True, check=False)  # fmt: skip


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    # The opener of the desktop keeps what it was asked to open.
    pathlib.Path("bin").mkdir()
    opener = pathlib.Path("bin/xdg-open")
    opener.write_text(f'#!/bin/sh\necho "$1" >> {folder}/opened\ncp "${{1#file://}}" {folder}/page\n')
    opener.chmod(0o755)
    pathlib.Path("callback.c").write_text((sources / "windows/callback.c").read_text())
    command = [build / "bin/tarncc", "-w", "-O1", "-no-pie", "callback.c", "-o", "callback"]
    subprocess.run(command, check=True)

    for way, script, status, wanted in CASES:
        ended = run(way, script)
        shown = pathlib.Path("tree").read_text() + ended.stderr
        check(ended.returncode == status, f"{way}: status {ended.returncode}\n{ended.stderr}")
        for text in wanted:
            check(re.search(text, shown), f"{way}: {text!r} isn't shown in:\n{shown}")

    ended = run("null", OPEN + 'click "Save As..."\ntype "kept.txt\\n"\nwait idle\n' + CLOSE)
    kept = pathlib.Path("kept.txt").read_text() if pathlib.Path("kept.txt").exists() else ""
    for text in ("Runtime error from program:", "/callback\nAccess Violation\n", "in touch, ",
                 "rax=", ">00"):  # fmt: skip
        check(text in kept, f"what was saved lacks {text!r}:\n{kept}\n{ended.stderr}")

    # A report by mail: on the button only, and its page goes with the window.
    for method, wanted in (("1", "onload=\"javascript: window.location.href='mailto:a@b.org?Subject="),
                           ("0", 'href="mailto:a@b.org?Subject=')):  # fmt: skip
        pathlib.Path("callback.ini").write_text(
            f"[EmailReport]\nToAddr=a@b.org\nSubject=It \\ \"failed\"\nMethod={method}\n")
        run("null", OPEN + CLOSE)
        check(pathlib.Path("opened").read_text() == "", "a page was opened by itself")
        ended = run("null", OPEN + 'click "Report"\nwait 500ms\n' + CLOSE)
        opened = pathlib.Path("opened").read_text().strip()
        check(opened.startswith("file:///") and opened.endswith(".html"), f"opened: {opened!r}")
        check(not os.path.exists(opened.removeprefix("file://")), "the page stayed")
        page = pathlib.Path("page").read_text() if pathlib.Path("page").exists() else ""
        slashes = "\\\\" if method == "1" else "\\"
        for text in (wanted, f"It {slashes} %22failed%22&amp;Body=Runtime error", "%0Dcalled by go"):
            check(text in page, f"the page lacks {text!r}:\n{page}\n{ended.stderr}")

for fault in faults:
    print(fault)
sys.exit(bool(faults))
