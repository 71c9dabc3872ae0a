#!/usr/bin/env python3
"""Many processes append to one file under SHARE='DENYNONE': every record is there, whole, once.

    run.py BUILD [--processes N] [--records N]
"""
import argparse
import collections
import pathlib
import struct
import subprocess
import sys
import tempfile


def lines(data):
    assert data.endswith(b"\n")
    for line in data.splitlines():
        yield int(line[:8]), int(line[8:16]), int(line[16:24]), line[24:]


def gnu_records(data):
    at = 0
    while at < len(data):
        length, = struct.unpack_from("<i", data, at)
        assert struct.unpack_from("<i", data, at + 4 + length) == (length,)
        yield data[at + 4:at + 4 + length]
        at += 8 + length


def native_records(data):
    at = 0
    while at < len(data):
        long = data[at] == 255
        length = struct.unpack_from("<I", data, at + 1)[0] if long else data[at]
        frame = 5 if long else 1
        end = at + frame + length
        front = data[at + 1:at + 5] + b"\xff" if long else data[at:at + 1]
        assert data[end:end + frame] == front
        yield data[at + frame:end]
        at = end + frame


def fields(records):
    for record in records:
        yield *struct.unpack_from("<3i", record), record[12:]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--processes", type=int, default=12)
    parser.add_argument("--records", type=int, default=250)
    options = parser.parse_args()
    source = pathlib.Path(__file__).resolve().parent / "sharing.f90"
    tarnfc = options.build.resolve() / "bin" / "tarnfc"
    with tempfile.TemporaryDirectory() as folder:
        for dialect in "gnu", "native":
            subprocess.run([tarnfc, f"--dialect={dialect}", "-w", "-fdec", source, "-o", dialect],
                           cwd=folder, check=True)
            for form in "formatted", "unformatted":
                running = [subprocess.Popen([f"./{dialect}", str(who), str(options.records), form],
                                            cwd=folder)
                           for who in range(1, options.processes + 1)]
                for process in running:
                    if process.wait() != 0:
                        sys.exit(f"{dialect} {form}: status {process.returncode}")
                shared = pathlib.Path(folder, "shared")
                data = shared.read_bytes()
                shared.unlink()
                if form == "formatted":
                    found = lines(data)
                else:
                    found = fields(gnu_records(data) if dialect == "gnu" else native_records(data))
                seen = collections.Counter()
                for who, number, length, text in found:
                    assert text == str(number % 10).encode() * length, (dialect, form, who, number)
                    seen[who, number] += 1
                wanted = {(who, number) for who in range(1, options.processes + 1)
                          for number in range(1, options.records + 1)}
                if seen.keys() != wanted or set(seen.values()) != {1}:
                    sys.exit(f"{dialect} {form}: {len(wanted - seen.keys())} records are lost")


main()
