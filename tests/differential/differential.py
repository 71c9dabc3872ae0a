#!/usr/bin/env python3
"""Draws cases, runs them on gfortran's run-time and on ours, and shows where the two differ.

    differential.py [--build BUILD] [--cases N] [--seed S] [--kinds LETTERS] ...

Both executors are one program, linked with gfortran's run-time and with the library in front of
it. The answers must be equal byte for byte: IOSTAT, records, values, files. Exits with status 1
when a case differs, when ours dies in a case, or when an entry of ours turns out to be the
peer's.
"""

import argparse
import collections
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading

SEQUENCE_KINDS = "ocpqxXyYabuvfg"


def run_executor(executor, cases_path, cases, work):
    """The answers of an executor, one a case, and the libraries its entries came from.

    When the process dies, the answer of the case at hand says how, and the run goes on behind
    it (behind the whole sequence, if it was one).
    """
    os.makedirs(work, exist_ok=True)
    answers, origins, deaths = [], {}, 0
    while len(answers) < len(cases):
        results = os.path.join(work, "results")
        child = subprocess.run(
            [executor, cases_path, results, str(len(answers))],
            cwd=work, stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL)
        with open(results, "rb") as file:
            length = int(file.read(20) or b"0")
            lines = file.read(length).decode("latin-1").split("\n")[:-1]
        os.unlink(results)
        if not lines or child.returncode == 9:
            sys.exit("the executor doesn't run: " + child.stderr.decode(errors="replace")[:500])
        origins = dict(word.split("=") for word in lines[0].split())
        answers += lines[1:]
        if len(answers) >= len(cases) and child.returncode == 0:
            break
        deaths += 1
        if deaths > 200:
            sys.exit(f"{executor} died in more than 200 cases, last in: {cases[len(answers)]}")
        last = child.stderr.decode(errors="replace").strip().split("\n")
        answers.append(f"DIED with {child.returncode}: " + " / ".join(last[:6])[:400])
        if cases[len(answers) - 1][0] in SEQUENCE_KINDS:
            while len(answers) < len(cases) and cases[len(answers) - 1] != "e":
                answers.append("not run")
    return answers, origins


def text_of(word):
    return re.sub(r"%([0-9a-f]{2})", lambda m: chr(int(m[1], 16)), word)


def value_of(word):
    """An item as a reader of a report wants to see it."""
    kind, bits = word[:2], word[3:]
    if kind == "c1":
        return f'"{text_of(word[3:])}"'
    try:
        if kind[0] in "iu" and bits:
            n = int(bits, 16)
            return str(n - (1 << len(bits) * 4) if n >> (len(bits) * 4 - 1) else n)
        if kind == "r4":
            return repr(struct.unpack(">f", bytes.fromhex(bits))[0])
        if kind == "r8":
            return repr(struct.unpack(">d", bytes.fromhex(bits))[0])
        if kind == "z8":
            return str(struct.unpack(">2d", bytes.fromhex(bits)))
    except (ValueError, struct.error):
        pass
    return bits


def describe(case):
    """The words of a case with its texts unfolded and the values of its items."""
    words = []
    for word in case.split(" "):
        if word.startswith('"'):
            words.append(f"<{text_of(word[1:])}>")
        elif re.match(r"[ilrzc][0-9aq][:\"]", word):
            value = value_of(word)
            words.append(word if value == word[3:] else f"{word} [{value}]")
        else:
            words.append(word)
    return " ".join(words)


def group_of(case, ours, peer):
    """What a difference is filed under: the statement, its edits, the types, what differs."""
    kind = case[0]
    formats = re.findall(r'"(\([^ ]*)', case)
    edits = sorted(set(re.findall(r"(?:EN|ES|EX|[IBOZFEDGLA])(?=[0-9*)]|,|$)",
                                  text_of(formats[0]).upper()))) if formats else []
    types = sorted(set(re.findall(r" ([ilrzc][0-9aq])[:\"]", case)))
    if ours.startswith("DIED"):
        what = "DIED"
    elif peer.startswith("DIED"):
        what = "peer died"
    elif ours.split(" ")[0] != peer.split(" ")[0]:
        what = "IOSTAT " + peer.split(" ")[0] + " got " + ours.split(" ")[0]
    elif peer.split(" ")[0] != "0":
        what = "after IOSTAT " + peer.split(" ")[0]
    else:
        what = "result"
    if len(types) > 2:
        types = ["mixed"]
    if len(edits) > 2:
        edits = ["several"]
    return f"{kind} {'+'.join(edits) or '-'} {'+'.join(types) or '-'}: {what}"


def same(case, ours, peer):
    """Whether two answers agree as far as a program may look at them.

    What a failed WRITE leaves in the records, and the item at which a READ failed, are undefined
    (the peer leaves halves of COMPLEX values behind); what was read before it is compared.
    """
    if ours == peer:
        return True
    outcome, *their_words = peer.split(" ")
    our_outcome, *our_words = ours.split(" ")
    # The peer looks at the format before the file's end, and goes on behind the last record.
    which_error = ("5006", "-1", "-2")
    if outcome in which_error and our_outcome in which_error and (
            case[0] in "wWxa" or outcome == "5006"):
        return True
    # A NAMELIST is read from a unit twice: `0 then 5010`.
    second = re.match(r"0 then (-?[1-9]\d*)", peer)
    if second and ours.startswith(second[0]):
        return True
    if outcome != our_outcome or outcome in ("0", "DIED"):
        return False
    if case[0] in "wlWxXaubvnm":
        return True
    before = re.findall(r" ((?:[ilrz][0-9aq]|c[14])[:\"][^ ]*)", case)
    start = len(their_words) - len(before)
    if case[0] not in "rdRyY" or len(our_words) != len(their_words):
        return False
    changed = [i for i, words in enumerate(zip(before, their_words[start:], our_words[start:]))
               if len(set(words)) > 1]
    last = start + (changed[-1] if changed else 0)
    return their_words[start:last] == our_words[start:last]


def sequence_start(cases, index):
    while index > 0 and cases[index - 1] != "e" and cases[index - 1][0] in SEQUENCE_KINDS:
        index -= 1
    return index


def sequence_end(cases, index):
    while index < len(cases) and cases[index] != "e":
        index += 1
    return index + 1


def compare(cases, peer, ours, options):
    differences = []
    skip_to = -1
    for index, case in enumerate(cases):
        if index < skip_to:
            continue
        # What follows a difference or a failure in a sequence follows from it: each run-time has
        # its own idea of where a file stands behind a failure.
        if case[0] in SEQUENCE_KINDS and (re.match(r"[1-9]", peer[index]) or
                                          (case[0] in "xXau" and peer[index].startswith("-"))):
            skip_to = sequence_end(cases, index)
        if same(case, ours[index], peer[index]):
            continue
        if peer[index].startswith("DIED") or peer[index] == "not run":
            continue
        differences.append(index)
        if case[0] in SEQUENCE_KINDS:
            skip_to = sequence_end(cases, index)
    groups = collections.OrderedDict()
    for index in differences:
        groups.setdefault(group_of(cases[index], ours[index], peer[index]), []).append(index)
    for name, members in sorted(groups.items(), key=lambda g: -len(g[1]))[:options.groups]:
        print(f"== {name}: {len(members)} cases")
        for index in sorted(members, key=lambda i: len(cases[i]))[:options.show]:
            if cases[index][0] in SEQUENCE_KINDS:
                for before in range(sequence_start(cases, index), index):
                    print(f"   ...    {describe(cases[before])}\n          -> {peer[before]}")
            print(f"   case     {index}: {describe(cases[index])}")
            print(f"   expected {peer[index]}")
            print(f"   got      {ours[index]}")
    if len(groups) > options.groups:
        print(f"... and {len(groups) - options.groups} more groups")
    return differences


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--build", default="build", help="folder in which all was built")
    parser.add_argument("--draw", help="the program that draws cases")
    parser.add_argument("--peer", help="the executor with gfortran's run-time")
    parser.add_argument("--ours", help="the executor with the library")
    parser.add_argument("--library", dest="tested", default="libtarnlibc.so")
    parser.add_argument("--cases", type=int, default=100000)
    parser.add_argument("--seed", default="1")
    parser.add_argument("--kinds", help="letters of wlrdWRnmu: which cases to draw")
    parser.add_argument("--file", help="run the cases of this file instead")
    parser.add_argument("--keep", help="folder to work in, kept at the end")
    parser.add_argument("--show", type=int, default=2, help="differences shown of each group")
    parser.add_argument("--groups", type=int, default=40, help="groups shown")
    options = parser.parse_args()
    built = os.path.join(options.build, "tests", "differential")
    options.draw = options.draw or os.path.join(built, "differential_draw")
    options.peer = options.peer or os.path.join(built, "executor_peer")
    options.ours = options.ours or os.path.join(built, "executor_ours")

    work = options.keep or tempfile.mkdtemp(prefix="differential-")
    os.makedirs(work, exist_ok=True)
    work = os.path.abspath(work)
    try:
        cases_path = options.file and os.path.abspath(options.file)
        if not cases_path:
            cases_path = os.path.join(work, "cases")
            with open(cases_path, "wb") as file:
                subprocess.run([options.draw, options.seed, str(options.cases)] +
                               ([options.kinds] if options.kinds else []), stdout=file, check=True)
        with open(cases_path, encoding="latin-1", newline="\n") as file:
            cases = file.read().split("\n")[:-1]
        found = {}
        threads = [threading.Thread(target=lambda n=name, e=executor: found.__setitem__(
            n, run_executor(os.path.abspath(e), cases_path, cases, os.path.join(work, n))))
            for name, executor in (("peer", options.peer), ("ours", options.ours))]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if len(found) != 2:
            sys.exit("an executor didn't finish")
        (peer, peer_origins), (ours, our_origins) = found["peer"], found["ours"]

        foreign = [name for name, file in our_origins.items() if options.tested not in file]
        stolen = [name for name, file in peer_origins.items() if "libgfortran" not in file]
        if stolen:
            sys.exit("the peer's entries are not gfortran's: " + " ".join(stolen))
        differences = compare(cases, peer, ours, options)
        dead = [i for i, answer in enumerate(peer) if answer.startswith("DIED")]
        print(f"seed {options.seed}: {len(cases)} cases, {len(differences)} differ"
              + (f"; the peer itself died in {len(dead)}" if dead else ""))
        for index in dead[:options.show]:
            print(f"   the peer died: {describe(cases[index])}: {peer[index]}")
        if foreign:
            print("these entries are not the library's: " + " ".join(foreign))
        return 1 if differences or foreign or not cases else 0
    finally:
        if not options.keep:
            shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
