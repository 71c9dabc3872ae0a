#!/usr/bin/env python3
"""Failures in code of shared and static libraries, in stripped programs, and where maps are missing
or lie.

usage: libraries.py BUILD SOURCE_FOLDER
"""
import os
import pathlib
import subprocess
import sys
import tempfile

build, sources = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
PLUGIN = """module Plugin
contains
    subroutine work(n) bind(c)
        use iso_c_binding
        integer(c_int), intent(in) :: n
        call Deeper(n)
    contains
        subroutine Deeper(m)
            integer(c_int), intent(in) :: m
            integer, volatile :: q
            q = 10 / m
        end subroutine
    end subroutine
end module
"""
HOST = """#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>
#ifndef LOADING
extern void work(int*);
#else
#define work NULL
#endif
typedef void (*routine)(int*);
__attribute__((noinline)) static void start(routine called) {
    int zero = 0;
    called(&zero);
    __asm__ volatile("");
}
int main(int count, char** words) {
    routine called = work;
    if (count > 1) {
        void* plugin = dlopen(words[1], RTLD_NOW);
        if (plugin == NULL) return puts(dlerror());
        called = (routine)dlsym(plugin, "work");
    }
    if (count > 2 && unlink(words[2]) != 0) return 1;
    start(called);
}
"""
CHAIN = ["in work::Deeper, plugin.f90:11", "called by work, plugin.f90:6",
         "called by start, host.c:13", "called by main, host.c:24"]  # fmt: skip
environment = {k: v for k, v in os.environ.items() if not k.startswith(("GFORTRAN_", "TARN"))}
faults = []


def make(driver, *words):
    subprocess.run([build / "bin" / driver, "-w", *words], check=True)


def expect(what, command, lines, status=-8):
    run = subprocess.run(command, env=environment, capture_output=True, text=True, timeout=60,
                         check=False)  # fmt: skip
    shown = [line.strip() for line in run.stderr.splitlines()]
    if run.returncode != status or not any(shown[i:i + len(lines)] == lines for i in range(len(shown))):
        faults.append(f"{what}: status {run.returncode}\n{run.stderr}")


def spoil(path, change):
    """Writes a program whose map section went through `change`."""
    subprocess.run(["objcopy", "--dump-section", ".tarnmap=map", path], check=True)
    pathlib.Path("spoilt").write_bytes(change(bytearray(pathlib.Path("map").read_bytes())))
    subprocess.run(["objcopy", "--update-section", ".tarnmap=spoilt", path, "liar"], check=True)


def counts_of_nowhere(section):
    section[24:40] = b"\xff" * 16
    return section


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    pathlib.Path("plugin.f90").write_text(PLUGIN)
    pathlib.Path("host.c").write_text(HOST)
    for level in ("-O0", "-O2"):
        make("tarnfc", level, "-shared", "-fPIC", "plugin.f90", "-o", "libplugin.so")
        make("tarnfc", level, "-c", "plugin.f90", "-o", "plugin.o")
        subprocess.run(["ar", "rcs", "libstatic.a", "plugin.o"], check=True)
        make("tarncc", level, "host.c", "-L.", "-lplugin", "-Wl,-rpath,.", "-o", "linked")
        make("tarncc", level, "-DLOADING", "host.c", "-o", "loading")
        make("tarncc", level, "host.c", "libstatic.a", "-o", "static")
        make("tarncc", level, "-no-pie", "host.c", "libstatic.a", "-o", "fixed")
        expect(f"{level} linked", ["./linked"], CHAIN)
        expect(f"{level} loaded", ["./loading", "./libplugin.so"], CHAIN)
        for name in ("static", "fixed"):
            expect(f"{level} {name}", [f"./{name}"], CHAIN)
            subprocess.run(["strip", name], check=True)
            expect(f"{level} {name}, stripped", [f"./{name}"], CHAIN)
        expect(f"{level}, the library is gone", ["./loading", "./libplugin.so", "libplugin.so"],
               CHAIN[2:])  # fmt: skip

    # Maps that aren't what they say: the names come from the symbols, or from nowhere.
    make("tarncc", "-O1", "-no-pie", "host.c", "libstatic.a", "-o", "program")
    for name, change in (("cut", lambda section: section[: len(section) // 2]),
                         ("empty", lambda section: section[:10]),
                         ("lying", counts_of_nowhere),
                         ("noise", lambda section: section[:64] + os.urandom(len(section) - 64))):
        spoil("program", change)
        run = subprocess.run(["./liar"], env=environment, capture_output=True, timeout=60, check=False)
        if run.returncode != -8 or b"Integer divide by zero" not in run.stderr:
            faults.append(f"{name}: status {run.returncode}\n{run.stderr.decode(errors='replace')}")

    # The executable is replaced while it runs: the new one's lines aren't the old one's.
    pathlib.Path("host.c").write_text(HOST.replace("    start(called);", """
    FILE* other = fopen("other", "w");
    for (int i = 0; i < 20000; ++i) fputs("other", other);
    fclose(other);
    rename("other", words[0]);
    start(called);"""))  # fmt: skip
    make("tarncc", "-O1", "host.c", "libstatic.a", "-o", "replaced")
    expect("replaced", ["./replaced"], ["called by start, host.c:13"])

for fault in faults:
    print(fault)
sys.exit(bool(faults))
