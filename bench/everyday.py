"""What everyday programs do, on gfortran's run-time and on ours: see `bench/run everyday`."""

import os
import re
import statistics
import subprocess

GOAL = 1.5
# Whose file another kind of work reads, where the name doesn't tell.
FEEDS = {"read-table-list": "write-table", "read-csv-split": "write-csv", "copy-size": "write-lines",
         "read-list-text": "write-lines", "read-twice": "write-lines", "read-part": "write-big",
         "read-stream-bytes": "write-stream", "read-stream-pos": "write-stream",
         "update-direct": "write-direct", "update-in-turn": "write-direct",
         "inquire-exist": "write-table", "backspace-text": "write-table",
         "backspace-read": "write-table", "rewind-read": "write-table", "open-read": "open-close",
         "open-delete": "open-close", "open-many": "open-close"}


def names_in(source):
    with open(source, encoding="utf-8") as text:
        return re.findall(r"case \('([a-z-]+)'\)", text.read())


def feed_of(name, names):
    writer = name.replace("read-", "write-", 1)
    return FEEDS.get(name) or (writer if writer != name and writer in names else None)


def run(source, programs, options, work, spent):
    os.mkdir(os.path.join(work, "every.open"))
    names = names_in(source)
    count = str(options.records)
    for name in names:
        if options.filters and not any(f in name for f in options.filters):
            continue
        feed = feed_of(name, names)
        times = {side: [] for side in programs}
        for _ in range(options.rounds):
            for side, program in programs.items():
                if feed:
                    spent([programs["peer"], feed, count], work, subprocess.DEVNULL)
                times[side].append(spent([program, name, count], work, subprocess.DEVNULL))
        peer, ours = (statistics.median(times[side]) for side in ("peer", "ours"))
        print(f"{name:<20}{peer:>10.3f}{ours:>10.3f}{peer / ours:>7.1f}x{GOAL:>7}x", flush=True)
