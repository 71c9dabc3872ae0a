#!/usr/bin/env python3
"""Random calls of the array intrinsics on gfortran's run-time and on ours.

    random_calls.py --build BUILD [--seed N] [--calls N]

A Fortran program of random statements is drawn: shapes, sections of any stride, masks, kinds,
optional arguments. It is compiled once, linked twice, and must print the same on both run-times,
bit for bit. What the order of additions may change (MATMUL of REALs) is drawn from small whole
numbers, which are exact in any order.
"""

import argparse
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

KINDS = {"integer": [1, 2, 4, 8, 16], "real": [4, 8, 10, 16], "complex": [4, 8, 10, 16],
         "logical": [1, 2, 4, 8, 16]}
SHORT = {"integer": "i", "real": "r", "complex": "c", "logical": "l", "character": "s"}
NUMBERS = ["integer", "real", "complex"]
ORDERED = ["integer", "real", "character"]
EXTENTS = [7, 6, 5]  # of the arrays, the longest first
BATCH = 40  # statements in one subroutine


class Type:
    def __init__(self, draw, families, strange=True):
        family = draw.choice(families)
        self.family = family
        self.kind = draw.choice([1, 4]) if family == "character" else draw.choice(KINDS[family])
        self.name = f"{SHORT[family]}{self.kind}"
        # Arrays named x... hold small whole numbers, the others anything, NaNs included.
        self.prefix = "a" if strange and family != "logical" else "x"

    def array(self, rank):
        return f"{self.prefix}{rank}{self.name}"

    def value(self, draw):
        n = draw.choice([-3, -1, 0, 1, 2, 5])
        if self.family == "integer":
            return f"{n}_{self.kind}"
        if self.family == "real":
            return f"{n}.0_{self.kind}"
        if self.family == "complex":
            return f"({n}.0_{self.kind},{draw.choice([0, 1])}.0_{self.kind})"
        if self.family == "logical":
            return draw.choice([".true.", ".false."]) [:-1] + f"._{self.kind}"
        return f"{self.kind}_'{draw.choice(['ab', 'b', 'abc', 'abcd ', ''])}'"


def draw_extent(draw, limit):
    roll = draw.random()
    if roll < 0.08:
        return 0
    if roll < 0.2:
        return 1
    return draw.randint(1, limit)


def draw_range(draw, extent, limit):
    """Subscripts that choose `extent` of `limit` elements, at some stride."""
    if extent == 0:
        return draw.choice(["2:1", "1:3:-1"])
    steps = [s for s in (1, 1, 2, 3) if (extent - 1) * s < limit]
    step = draw.choice(steps)
    first = draw.randint(1, limit - (extent - 1) * step)
    last = first + (extent - 1) * step
    if draw.random() < 0.3:
        return f"{last}:{first}:{-step}"
    if step == 1:
        return ":" if extent == limit and draw.random() < 0.7 else f"{first}:{last}"
    return f"{first}:{last}:{step}"


def section(draw, array, shape):
    """A section of the given shape of a whole array of rank 1, 2 or 3."""
    limits = list(EXTENTS)
    chosen = sorted(draw.sample(range(3), len(shape)))
    fit = [d for d in range(3)]
    if len(shape) < 3 and draw.random() < 0.5 and all(
            shape[i] <= EXTENTS[i] for i in range(len(shape))):
        ranges = [draw_range(draw, shape[i], EXTENTS[i]) for i in range(len(shape))]
        return f"{array(len(shape))}({','.join(ranges)})"
    if any(shape[i] > limits[d] for i, d in enumerate(chosen)):
        chosen = list(range(len(shape)))
    subscripts = []
    for d in fit:
        if d in chosen:
            subscripts.append(draw_range(draw, shape[chosen.index(d)], limits[d]))
        else:
            subscripts.append(str(draw.randint(1, limits[d])))
    return f"{array(3)}({','.join(subscripts)})"


def draw_shape(draw, lowest=1, highest=3):
    rank = draw.randint(lowest, highest)
    return [draw_extent(draw, EXTENTS[2] if i else EXTENTS[2]) for i in range(rank)]


def mask_of(draw, shape):
    roll = draw.random()
    if roll < 0.15:
        return draw.choice([".true.", ".false.", "yes", "no"])
    kind = draw.choice(KINDS["logical"])
    if roll < 0.25:
        return f"spread({draw.choice(['.true.', '.false.'])},1,{shape[0]})" if len(shape) == 1 \
            else section(draw, lambda r: f"f{r}l{kind}", shape)
    return section(draw, lambda r: f"x{r}l{kind}", shape)


def masked(draw, shape):
    """The peer writes beyond the storage of empty results that it makes with a mask."""
    return 0 not in shape and draw.random() < 0.6


def dim_of(draw, rank):
    return draw.choice([str(draw.randint(1, rank)), f"one+{draw.randint(0, rank - 1)}"])


def reduction(draw):
    name = draw.choice(["sum", "product", "maxval", "minval", "iall", "iany", "iparity", "norm2"])
    families = {"sum": NUMBERS, "product": NUMBERS, "maxval": ORDERED, "minval": ORDERED,
                "norm2": ["real"]}.get(name, ["integer"])
    kind = Type(draw, families)
    if name == "norm2":
        kind.prefix = "x"
        if kind.kind == 16:  # the peer's square root is off by a unit
            kind.kind, kind.name = 8, "r8"
    if kind.name == "s4":
        kind.kind, kind.name = 1, "s1"  # the highest character isn't one that can be written
    shape = draw_shape(draw, 1 if kind.family == "character" else 2)
    arguments = [section(draw, kind.array, shape)]
    if len(shape) > 1 and (kind.family != "character" or draw.random() < 0.6):
        arguments.append("dim=" + dim_of(draw, len(shape)))
    if name != "norm2" and masked(draw, shape):
        arguments.append("mask=" + mask_of(draw, shape))
    return f"{name}({','.join(arguments)})", kind


def location(draw):
    name = draw.choice(["maxloc", "minloc", "findloc"])
    kind = Type(draw, ORDERED if name != "findloc" else NUMBERS + ["character"])
    shape = draw_shape(draw)
    array = section(draw, kind.array, shape)
    mask = mask_of(draw, shape) if masked(draw, shape) else ""
    dim = dim_of(draw, len(shape)) if draw.random() < 0.5 else ""
    back = draw.choice([".true.", ".false.", "yes", "no"]) if draw.random() < 0.5 else ""
    if name == "findloc":
        return findloc(array, kind.value(draw), mask, dim, back, draw), None
    # The peer passes KIND= where BACK= belongs, forgets the mask for equal elements with BACK=, and
    # mixes up arguments and lengths of texts with a scalar mask.
    if not dim:
        back = "" if mask else back
    if kind.family == "character" and dim and "(" not in mask:
        mask = ""
    optional = [f"{key}={value}" for key, value in
                (("dim", dim), ("mask", mask), ("back", back)) if value]
    return f"{name}({','.join([array] + optional)})", None


def findloc(array, value, mask, dim, back, draw):
    """The call, and what it means in words that the peer gets right."""
    kind = f",kind={draw.choice([1, 2, 4, 8, 16])}" if draw.random() < 0.4 else ""
    match = f"({array}=={value})" + (f".and.{mask}" if mask else "")
    along = f",dim={dim}" if dim else ""
    backward = f",back={back}" if back else ""
    call = f"findloc({array},{value}{along}{',mask=' + mask if mask else ''}{backward}{kind})"
    meaning = (f"merge(maxloc(merge(1,0,{match}){along}{backward}),0,any({match}{along}))")
    return f"{call} ! {meaning}"


def logical(draw):
    name = draw.choice(["count", "any", "all", "parity"])
    kind = Type(draw, ["logical"])
    shape = draw_shape(draw, 2)
    which = draw.choice(["x", "x", "f", "t"]) if name in ("any", "all") else "x"
    arguments = [section(draw, lambda r: f"{which}{r}{kind.name}", shape), dim_of(draw, len(shape))]
    if name == "count" and draw.random() < 0.5:
        arguments.append(f"kind={draw.choice([1, 2, 4, 8, 16])}")
    return f"{name}({','.join(arguments)})", None


ANY = NUMBERS + ["logical", "character"]


def packing(draw):
    kind = Type(draw, ANY)
    shape = draw_shape(draw)
    array = section(draw, kind.array, shape)
    if draw.random() < 0.5:
        mask = mask_of(draw, shape)
        vector = ""
        total = 1
        for extent in shape:
            total *= extent
        if total <= EXTENTS[0] and draw.random() < 0.7:
            vector = "," + section(draw, kind.array, [draw.randint(total, EXTENTS[0])])
        return f"pack({array},{mask}{vector})", kind
    mask = section(draw, lambda r: f"x{r}l{draw.choice([1, 2, 4, 8, 16])}", shape)
    vector = f"reshape({kind.array(3)}({draw.choice([':', f'{EXTENTS[0]}:1:-1'])},:,:),[{elements()}])"
    if draw.random() < 0.5:
        vector = f"{kind.prefix}v{kind.name}({draw.choice([':', '::2', f'{2 * elements()}:1:-1'])})"
    field = section(draw, kind.array, shape) if draw.random() < 0.5 else element(draw, kind)
    return f"unpack({vector},{mask},{field})", kind


def element(draw, kind):
    return f"{kind.array(1)}({draw.randint(1, EXTENTS[0])})"


def spreading(draw):
    kind = Type(draw, ANY)
    copies = draw.choice([0, 1, 2, 3, 7])
    if draw.random() < 0.2:
        return f"spread({element(draw, kind)},1,{copies})", kind
    shape = draw_shape(draw)
    return (f"spread({section(draw, kind.array, shape)},{dim_of(draw, len(shape) + 1)},"
            f"{copies}+zero)", kind)


def reshaping(draw):
    kind = Type(draw, ANY)
    source = section(draw, kind.array, draw_shape(draw))
    rank = draw.randint(1, 3)
    shape = [draw.randint(0, 4) for _ in range(rank)]
    pad = section(draw, kind.array, [draw.randint(1, 5)])
    order = ""
    if draw.random() < 0.5:
        permutation = list(range(1, rank + 1))
        draw.shuffle(permutation)
        order = ",order=[" + ",".join(f"{p}+zero" for p in permutation) + "]"
    return (f"reshape({source},[{','.join(str(e) for e in shape)}]+zero,pad={pad}{order})", kind)


def shifting(draw):
    kind = Type(draw, ANY)
    shape = draw_shape(draw)
    dim = draw.randint(1, len(shape))
    rest = shape[:dim - 1] + shape[dim:]
    shift_kind = draw.choice([1, 2, 4, 8, 16])
    many = rest and draw.random() < 0.5
    if many:
        shift = section(draw, lambda r: f"x{r}i{shift_kind}", rest)
    else:
        shift = f"{draw.randint(-9, 9)}_{shift_kind}"
    name = draw.choice(["cshift", "eoshift"])
    arguments = [section(draw, kind.array, shape), shift]
    if name == "eoshift" and (kind.family == "logical" or draw.random() < 0.6):
        boundary = section(draw, kind.array, rest) if rest and draw.random() < 0.5 \
            else element(draw, kind)
        arguments.append("boundary=" + boundary)
    if dim > 1 or draw.random() < 0.5:
        arguments.append(f"dim={dim}")
    return f"{name}({','.join(arguments)})", kind


def multiplying(draw):
    kind = Type(draw, NUMBERS + ["logical"], strange=False)
    # The peer crashes on products with an empty inner dimension.
    m, k, n = draw_extent(draw, 5), draw.randint(1, 5), draw_extent(draw, 5)
    shapes = draw.choice([([m, k], [k, n]), ([k], [k, n]), ([m, k], [k])])
    factors = []
    for shape in shapes:
        if len(shape) == 2 and draw.random() < 0.4:
            factors.append(f"transpose({section(draw, kind.array, shape[::-1])})")
        else:
            factors.append(section(draw, kind.array, shape))
    return f"matmul({','.join(factors)})", kind


DRAWERS = {"reductions": reduction, "locations": location, "logical": logical, "packing": packing,
           "spreading": spreading, "reshaping": reshaping, "shifting": shifting,
           "matmul": multiplying}


def elements():
    return EXTENTS[0] * EXTENTS[1] * EXTENTS[2]


def declarations():
    lines, fills = [], []
    e, f, g = EXTENTS
    for family, kinds in list(KINDS.items()) + [("character", [1, 4])]:
        for kind in kinds:
            name = f"{SHORT[family]}{kind}"
            full = f"{family}(kind={kind})" if family != "character" \
                else f"character(len=3,kind={kind})"
            prefixes = "x" if family == "logical" else "ax"
            for prefix in prefixes + ("tf" if family == "logical" else ""):
                lines.append(f"{full} :: {prefix}1{name}({e}), {prefix}2{name}({e},{f}), "
                             f"{prefix}3{name}({e},{f},{g}), {prefix}v{name}({2 * elements()})")
                if prefix in "tf":
                    fills += [f"{prefix}{r}{name} = .{'true' if prefix == 't' else 'false'}."
                              for r in "123v"]
                    continue
                fills += [f"do i = 1, {elements()}", *fill(family, kind, prefix, name),
                          f"{prefix}v{name}(i) = y{name}",
                          f"{prefix}v{name}(i+{elements()}) = y{name}",
                          f"{prefix}3{name}(mod(i-1,{e})+1,mod((i-1)/{e},{f})+1,"
                          f"(i-1)/{e * f}+1) = y{name}",
                          "end do", f"{prefix}2{name} = {prefix}3{name}(:,:,3)",
                          f"{prefix}1{name} = {prefix}3{name}(:,4,2)"]
            lines.append(f"{full} :: y{name}")
    return lines, fills


def fill(family, kind, prefix, name):
    y = f"y{name}"
    if family == "logical":
        return ["n = next()", f"{y} = n < 500"]
    if family == "character":
        lines = ["n = next()", f"{y} = repeat({kind}_' ', 3)",
                 f"{y}(1:1) = achar(97 + mod(n,3), {kind})",
                 f"if (n > 300) {y}(2:2) = achar(97 + mod(n/10,2), {kind})",
                 f"if (n > 950) {y}(2:2) = achar(5, {kind})"]
        if kind == 1:
            lines.append(f"if (n > 980) {y}(1:1) = char(200)")
        return lines
    small = prefix == "x"
    spread = 3 if small else 9
    if family == "integer":
        lines = ["n = next()", f"{y} = mod(n, {2 * spread + 1}) - {spread}"]
        if not small:
            lines += [f"if (n > 970) {y} = huge({y})", f"if (n > 985) {y} = -huge({y}) - 1_{kind}"]
        return lines
    if family == "real":
        lines = ["n = next()", f"{y} = mod(n, {2 * spread + 1}) - {spread}"]
        if not small:
            lines += [f"if (n > 600) {y} = {y} * 1.37_{kind} + 0.1_{kind}",
                      f"if (n > 850) {y} = -0.0_{kind}", f"if (n > 900) {y} = huge({y})",
                      f"if (n > 920) {y} = ieee_value({y}, ieee_positive_inf)",
                      f"if (n > 940) {y} = ieee_value({y}, ieee_negative_inf)",
                      f"if (n > 960) {y} = ieee_value({y}, ieee_quiet_nan)"]
        return lines
    return ["n = next()", f"{y} = cmplx(mod(n,{spread}) - 1, mod(n/10,3) - 1, {kind})",
            *([f"if (n > 800) {y} = {y} * (1.1_{kind}, 0.3_{kind})"] if not small else [])]


def program(draw, calls, names):
    lines, fills = declarations()
    text = ["module data", "use ieee_arithmetic", "implicit none", *lines,
            "integer :: one = 1, zero = 0, n, i, state = 1", "logical :: yes = .true., no = .false.",
            "contains", "integer function next()",
            "state = mod(state * 1103 + 12345, 1048576)", "next = mod(state / 7, 1000)",
            "end function", "subroutine fill_all", *fills, "end subroutine", "end module"]
    subroutines = []
    for first in range(0, calls, BATCH):
        subroutines.append(f"s{first}")
        text += [f"subroutine s{first}", "use data", "implicit none"]
        for number in range(first, min(first + BATCH, calls)):
            call, kind = DRAWERS[draw.choice(names)](draw)
            form = "(*(1x,z0))"
            if kind is not None and kind.family == "character":
                form = '(*(a,"|"))'
            whole = call.split(" ! ")[0]
            text.append(f"print '(i0,a,*(1x,i0))', {number}, ' shape', shape({whole})")
            if call.startswith("findloc"):
                call, meaning = call.split(" ! ")
                text.append(f"print '(a,*(1x,i0))', 'direct', {call}")
                text.append(f"print '(a,*(1x,i0))', 'meaning', {meaning}")
            elif kind is not None and kind.family == "logical":
                text.append(f"print '(*(1x,l1))', {call}")
            else:
                text.append(f"print '{form}', {call}")
        text += ["end subroutine"]
    text += ["program main", "use data", "open(unit=6, encoding='utf-8')",
             "call fill_all", *[f"call {s}" for s in subroutines],
             "end program"]
    return "\n".join(text) + "\n"


def run(command, **options):
    done = subprocess.run(command, capture_output=True, text=True, errors="replace", timeout=300,
                          **options)
    return done.returncode, done.stdout, done.stderr


def statement(source, number):
    lines = source.split("\n")
    for i, line in enumerate(lines):
        if re.match(rf"print '\(i0,a,\*\(1x,i0\)\)', {number}, ", line):
            return lines[i + 1]
    return "?"


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--build", default="build")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--calls", type=int, default=400)
    parser.add_argument("--families", default=",".join(DRAWERS))
    parser.add_argument("--extents", help="of the arrays, as 40,37,36; the longest first")
    parser.add_argument("--flags", default="-O0")
    parser.add_argument("--link-flags", default="", help="for the side under test")
    parser.add_argument("--keep", help="folder to leave the program in")
    options = parser.parse_args()
    if options.extents:
        EXTENTS[:] = map(int, options.extents.split(","))
    library = os.path.abspath(os.path.join(options.build, "libtarnlibc.so"))
    work = options.keep or tempfile.mkdtemp(prefix="array-calls-")
    os.makedirs(work, exist_ok=True)
    source = program(random.Random(options.seed), options.calls, options.families.split(","))
    path = os.path.join(work, "calls.f90")
    with open(path, "w", encoding="utf-8") as file:
        file.write(source)
    try:
        made = run(["gfortran", "-w", *options.flags.split(), "-fno-frontend-optimize",
                    "-finline-matmul-limit=0", "-ffree-line-length-none", "-c", path, "-o",
                    os.path.join(work, "calls.o"), "-J", work])
        if made[0] != 0:
            sys.exit(f"the program doesn't compile:\n{made[2][:3000]}")
        outputs = []
        for side, extra in (("peer", []),
                            ("ours", [library, f"-Wl,-rpath,{os.path.dirname(library)}",
                                      *options.link_flags.split()])):
            exe = os.path.join(work, side)
            linked = run(["gfortran", os.path.join(work, "calls.o"), *extra, "-o", exe])
            if linked[0] != 0:
                sys.exit(f"linking fails:\n{linked[2][:3000]}")
            outputs.append(run([exe], env={**os.environ, "GFORTRAN_UNBUFFERED_ALL": "1"}))
        (peer_status, peer, peer_error), (status, ours, error) = outputs
        if peer_status != 0:
            last = re.findall(r"^(\d+) shape", peer, re.MULTILINE)[-1:]
            sys.exit(f"the peer fails behind call {last}:\n{peer_error[:2000]}")
        wrong = 0
        number = -1
        direct = ""
        for expected, got in zip(peer.split("\n"), ours.split("\n")):
            match = re.match(r"(\d+) shape", expected)
            if match:
                number = int(match[1])
            if expected.startswith("direct"):
                direct = got
                continue
            if got.startswith("meaning") and direct[6:] != got[7:] and expected == got:
                got = direct
            if expected != got:
                wrong += 1
                if wrong <= 20:
                    print(f"{statement(source, number)}\n  expected {expected[:300]}\n"
                          f"  got      {got[:300]}")
        if status != 0 or peer.count("\n") != ours.count("\n"):
            print(f"status {status}, behind call {number}: {error[:1000]}")
            wrong += 1
        print(f"seed {options.seed}: {options.calls} calls, {wrong} lines differ")
        return 1 if wrong else 0
    finally:
        if not options.keep:
            shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
