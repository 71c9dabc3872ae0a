#!/usr/bin/env python3
"""Drives the form through a real X server, with and without a window manager, as a user does it, and
holds what it prints against what the same form prints on the memory display.

usage: desktop.py BUILD FOLDER [MANAGER]
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

SKIPPED = 77


def start_server():
    """An X server on a free display; its process and name. It doesn't start afresh when a tool was its
    last client: the program might be connecting just then."""
    read_end, write_end = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x1024x24",
                               "-nolisten", "tcp", "-noreset"], pass_fds=[write_end],
                              stderr=subprocess.DEVNULL)
    os.close(write_end)
    with os.fdopen(read_end) as numbers:
        return server, ":" + numbers.readline().strip()


class Desktop:
    def __init__(self, display):
        self.environment = dict(os.environ, DISPLAY=display)

    def tool(self, *words):
        run = subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=False,
                             capture_output=True, text=True)
        return run.stdout.strip()

    def find(self, title):
        for _ in range(100):
            found = self.tool("search", "--onlyvisible", "--name", f"^{title}$").split()
            if found:
                return found[-1]
            time.sleep(0.1)
        raise SystemExit(f"no window called {title} appeared")

    def click(self, window, x, y):
        self.tool("mousemove", "--window", window, x, y, "click", 1)
        time.sleep(0.2)

    def keys(self, *names):
        self.tool("key", "--delay", 30, *names)
        time.sleep(0.1)

    def type(self, text):
        self.tool("type", "--delay", 30, text)
        time.sleep(0.1)


def places(tree):
    """The middle of each control, by its label, in window pixels."""
    out = {}
    for line in tree.read_text().splitlines():
        found = re.match(r'\s+([a-z ]+) "([^"]+)".* (-?\d+),(-?\d+) (\d+)x(\d+)$', line)
        if found and not found[1].startswith("label"):
            x, y, width, height = map(int, found.groups()[2:])
            out[found[2]] = (x + width // 2, y + height // 2)
    return out


def fill_in(desktop, window, where):
    desktop.click(window, *where["Count"])
    desktop.keys("ctrl+a")
    desktop.type("12")
    desktop.keys("Tab", "ctrl+a")
    desktop.type("7.25")
    desktop.keys("Tab", "ctrl+a")
    desktop.type("Bob")
    for label in ("Flag", "Other", "Double"):
        desktop.click(window, *where[label])
    desktop.keys("alt+o")
    desktop.keys("alt+c")


LOST = """
#include <stdio.h>
#include <stdlib.h>
#include <tarn/winio.h>
static void leave(void) { puts("exit routine"); }
int main(void) {
    atexit(leave);
    FILE* file = fopen("kept", "w");
    fputs("not flushed", file);
    puts("written");
    __winio("%ca[Lost]%bt[OK]");
    puts("answered");
    return 0;
}
"""


def lose_the_server(build, work):
    """What a program wrote is kept when the desktop goes away under it."""
    (pathlib.Path(work) / "lost.c").write_text(LOST)
    subprocess.run([build / "bin" / "tarncc", "lost.c", "-o", "lost"], cwd=work, check=True)
    server, display = start_server()
    desktop = Desktop(display)
    program = subprocess.Popen(["./lost"], cwd=work, text=True, stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, env=desktop.environment)
    try:
        desktop.find("Lost")
    finally:
        server.terminate()
        server.wait()
    shown, said = program.communicate(timeout=30)
    kept = (pathlib.Path(work) / "kept").read_text()
    if (program.returncode, shown, kept) != (1, "written\nexit routine\n", "not flushed") or \
            "The desktop has gone away" not in said:
        sys.exit(f"without its server: {program.returncode}, {shown!r}, {kept!r}, {said!r}")


def main():
    build, folder = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    manager = sys.argv[3] if len(sys.argv) > 3 else None
    for tool in ["Xvfb", "xdotool", manager]:
        if tool and not shutil.which(tool):
            print(f"{tool} isn't installed")
            sys.exit(SKIPPED)
    with tempfile.TemporaryDirectory() as work:
        subprocess.run([build / "bin" / "tarnfc", folder / "form.f90", "-o", "form"], cwd=work,
                       check=True)
        server, display = start_server()
        started = [server]
        try:
            desktop = Desktop(display)
            if manager:
                started.append(subprocess.Popen([manager], env=desktop.environment,
                                                stderr=subprocess.DEVNULL))
                time.sleep(1)
            tree = pathlib.Path(work) / "tree.txt"
            program = subprocess.Popen(["./form"], cwd=work, stdout=subprocess.PIPE, text=True,
                                       env=dict(desktop.environment, TARN_DISPLAY="x11",
                                                TARN_TREE=str(tree)))
            started.append(program)
            window = desktop.find("Form")
            time.sleep(0.5)
            fill_in(desktop, window, places(tree))
            shown = program.communicate(timeout=30)[0] + f"status {program.returncode}\n"
        finally:
            for process in reversed(started):
                if process.poll() is None:
                    process.terminate()
                process.wait()
        if not manager:
            lose_the_server(build, work)
    expected = (folder / "form.expected").read_text()
    sys.exit(0 if shown == expected else f"it printed:\n{shown}in place of:\n{expected}")


main()
