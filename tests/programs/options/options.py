#!/usr/bin/env python3
"""Programs built by tarnfc under many options: each does what gfortran makes of it with the same
options, byte for byte, and loads no run-time of gfortran's.

    options.py DRIVERS [OPTIONS...]
"""

import concurrent.futures
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

FOLDER = os.path.dirname(os.path.abspath(__file__))
TABLE = [
    ("ordinary.f90", "-O0"),
    ("ordinary.f90", "-O3 -ffast-math -funroll-loops"),
    ("ordinary.f90", "-Os -s"),
    ("ordinary.f90", "-O2 -flto"),
    ("ordinary.f90", "-std=f95 -pedantic -O2"),
    ("ordinary.f90", "-fcheck=all -g"),
    ("ordinary.f90", "-fdefault-integer-8"),
    ("ordinary.f90", "-fdefault-real-8 -fdefault-double-8"),
    ("ordinary.f90", "-fopenmp -frecursive"),
    ("ordinary.f90", "-fcoarray=single"),
    ("ordinary.f90", "-static-libgfortran -static-libgcc"),
    ("ordinary.f90", "-pg"),
    ("ordinary.f90", "-no-pie -fno-automatic -finline-matmul-limit=0"),
    ("ordinary.f90", "-finit-real=snan -finit-integer=77 -fstack-arrays"),
    ("ordinary.f90", "-fconvert=big-endian -frecord-marker=8"),
    ("ordinary.f90", "-freal-4-real-10"),
    ("ordinary.f90", "-ff2c -fno-underscoring"),
    ("ordinary.f90", "-ffpe-trap=invalid,zero,overflow -fno-sign-zero"),
    ("ordinary.f90", "-fuse-ld=gold"),
    ("calculator.f90", "-O2"),
    ("calculator.f90", "-fcheck=all"),
    ("calculator.f90", "-O2 -flto -fdefault-integer-8"),
]


def outcome(compiler, source, options, folder):
    os.makedirs(folder)
    command = [compiler, "-w", *shlex.split(options), os.path.join(FOLDER, source), "-o", "program"]
    built = subprocess.run(command, cwd=folder, capture_output=True, text=True, check=False)
    if built.returncode != 0:
        return None, built.stderr[-2000:]
    ran = subprocess.run(["./program"], cwd=folder, capture_output=True, check=False, timeout=60)
    return ran, ran.stderr.decode("latin-1")[-2000:]


def needed(program):
    shown = subprocess.run(["readelf", "-d", program], capture_output=True, text=True, check=True)
    return re.findall(r"\(NEEDED\).*\[(.*)\]", shown.stdout)


def faults(drivers, source, options):
    with tempfile.TemporaryDirectory() as folder:
        peer, words = outcome("gfortran", source, options, os.path.join(folder, "peer"))
        if peer is None:
            return [f"gfortran doesn't build it: {words}"]
        ours, words = outcome(os.path.join(drivers, "tarnfc"), source, options,
                              os.path.join(folder, "ours"))  # fmt: skip
        if ours is None:
            return [f"tarnfc doesn't build it: {words}"]
        found = []
        if (ours.stdout, ours.returncode) != (peer.stdout, peer.returncode):
            before, after = (r.stdout.decode("latin-1").splitlines() for r in (peer, ours))
            lines = [f"  - {x}\n  + {y}" for x, y in zip(before, after) if x != y]
            found.append(f"status {peer.returncode}, now {ours.returncode}; {len(before)} lines, now "
                         f"{len(after)}\n" + "\n".join(lines[:10]) + f"\n{words}")  # fmt: skip
        library = [name for name in needed(os.path.join(folder, "ours", "program"))
                   if name.startswith("libgfortran")]  # fmt: skip
        return found + [f"it loads {name}" for name in library]


def main():
    drivers = os.path.abspath(sys.argv[1])
    table = [row for row in TABLE if row[1] != "-fuse-ld=gold" or shutil.which("ld.gold")]
    if sys.argv[2:]:
        table = [(source, " ".join(sys.argv[2:])) for source in dict(TABLE)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda row: faults(drivers, *row), table))
    for (source, options), found in zip(table, results):
        print(f"{'same' if not found else 'DIFFERENT'}: {source} {options}")
        for fault in found:
            print("   " + fault.replace("\n", "\n   "))
    return 1 if any(results) else 0


if __name__ == "__main__":
    sys.exit(main())
