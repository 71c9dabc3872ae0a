#!/usr/bin/env python3
"""Drives the form through a real X server, with and without a window manager, as a user does it, and
holds what it prints against what the same form prints on the memory display.

usage: desktop.py BUILD FOLDER [MANAGER]
"""
import os
import pathlib
import re
import shutil
import struct
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


BUSY = """
program busy
  use tarn
  integer :: i, ctrl
  real(8) :: value = 1d0
  i = winio@('%ca[Busy form]%`20rf%lw', value, ctrl)
  call open_to_window@(31, create_window@('Busy text', 20, 500, 400, 200))
  value = 88888888d0
  call window_update@(value)
  call window_update@(value)
  write (31, '(a)') '8888'
  write (31, '(a)') '8888'
  write (31, '(a)', advance='no') '88888888'
  call sleep(60)
end program
"""


def dark_columns(desktop, window):
    """How many columns of a window's inside have something dark, as letters are."""
    dump = subprocess.run(["xwd", "-silent", "-id", window], env=desktop.environment, check=True,
                          capture_output=True).stdout
    header = struct.unpack(">25I", dump[:100])
    width, height, row, colours = header[4], header[5], header[12], header[19]
    pixels = dump[header[0] + 12 * colours:]
    return sum(any(max(pixels[y * row + 4 * x:y * row + 4 * x + 3]) < 100
                   for y in range(10, height - 20)) for x in range(10, width - 20))


def show_before_computing(build, work, desktop):
    """What a program shows is seen while it computes and looks at no messages."""
    (pathlib.Path(work) / "busy.f90").write_text(BUSY)
    subprocess.run([build / "bin" / "tarnfc", "busy.f90", "-o", "busy"], cwd=work, check=True)
    program = subprocess.Popen(["./busy"], cwd=work, env=dict(desktop.environment,
                                                              TARN_DISPLAY="x11"))
    try:
        windows = desktop.find("Busy form"), desktop.find("Busy text")
        time.sleep(1)
        shown = [dark_columns(desktop, window) for window in windows]
    finally:
        program.terminate()
        program.wait()
    # Eight digits, of which each has at least four dark columns, and less than the whole window.
    if not all(32 <= columns < 120 for columns in shown):
        sys.exit(f"windows of a program that computes show {shown} columns of text")


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
            if shutil.which("xwd"):
                show_before_computing(build, work, desktop)
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
