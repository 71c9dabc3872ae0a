"""--virtual-common: a COMMON block that stands at an address of its own, far from the program.

A block in the program's data is mapped when the program is loaded, and the system refuses that where
the block is larger than its memory, however little of it will be touched. So the sources are compiled
for data at any address, the block's name becomes a fixed address, and a record in the program asks
the library to reserve the range before main (tarn/virtual_storage.h).
"""

import re
import subprocess

from command import UserError, compiler_of, missing

OPTION = "--virtual-common"
# Where nothing of a program is by itself: above its data, below its shared libraries.
FIRST_ADDRESS = 0x2000_0000_0000
LAST_ADDRESS = 0x7000_0000_0000
SPACING = 0x4000_0000
PAGE = 4096
# Absolute addresses of 64 bits for every block that isn't small; none of them is moved by loading.
# Objects of -flto don't tell the sizes of their blocks.
SMALL = 1024
COMPILE = ["-mcmodel=medium", f"-mlarge-data-threshold={SMALL}", "-fno-pie", "-fno-lto"]
LINK = ["-no-pie"]


class Block:
    def __init__(self, text):
        match = re.fullmatch(r"(//|/?\w+/?)(?::(0[xX][0-9a-fA-F]+))?(:undefined)?", text)
        if match is None:
            raise UserError(f"{OPTION}={text}: NAME, NAME:ADDRESS (as 0x...) or NAME:undefined"
                            " is what goes here")  # fmt: skip
        self.name = match[1].strip("/")
        self.address = int(match[2], 16) if match[2] else None
        self.undefined = bool(match[3])
        self.size = 0
        if self.address is not None and (
            self.address % PAGE or not SPACING <= self.address < LAST_ADDRESS
        ):
            raise UserError(f"{OPTION}={text}: the address must be a multiple of {PAGE}, from"
                            f" {SPACING:#x} to {LAST_ADDRESS:#x}")  # fmt: skip

    def symbols(self):
        """The names that the linker may know it by."""
        name = self.name.lower()
        return [name + "_", self.name, name] if name else ["__BLNK__"]


def take(arguments):
    """The blocks that the command line names, and the other arguments."""
    blocks, rest = [], []
    for argument in arguments:
        if argument == OPTION or argument.startswith(OPTION + "="):
            blocks += [Block(text) for text in argument.partition("=")[2].split(",")]
        else:
            rest.append(argument)
    return blocks, rest


def common_sizes(objects):
    """What the objects have in common: name to size, and the names that have values at the start."""
    nm = compiler_of("TARN_NM", "nm")
    sizes, initialised = {}, set()
    for path in objects:
        try:
            result = subprocess.run(nm + ["-S", path], capture_output=True, check=False)
        except FileNotFoundError:
            raise missing(nm, "TARN_NM") from None
        for line in result.stdout.decode(errors="replace").splitlines():
            if match := re.fullmatch(r"[0-9a-f]+ ([0-9a-f]+) ([A-Za-z]) (\S+)", line):
                if match[2] == "C":
                    sizes[match[3]] = max(sizes.get(match[3], 0), int(match[1], 16))
                elif match[2] in "DGRB":
                    initialised.add(match[3])
    return sizes, initialised


def assembly(blocks, objects):
    """The source of what the link needs for the blocks of these objects."""
    sizes, initialised = common_sizes(objects)
    lines = ['\t.section tarnvc,"aw",@progbits', "\t.balign 8"]
    next_address = FIRST_ADDRESS
    for block in blocks:
        symbol = next((name for name in block.symbols() if name in sizes), None)
        shown = f"/{block.name}/"
        if any(name in initialised for name in block.symbols()):
            raise UserError(f"{OPTION}: the COMMON block {shown} has values at the start of the"
                            " program and must stay in its data")  # fmt: skip
        if symbol is None:
            raise UserError(f"{OPTION}: no object has a COMMON block {shown}")
        size = sizes[symbol]
        if size <= SMALL:
            raise UserError(f"{OPTION}: the COMMON block {shown} has {size} bytes only; it must have"
                            f" more than {SMALL}")  # fmt: skip
        address = next_address if block.address is None else block.address
        if block.address is None:
            next_address += -(-size // SPACING) * SPACING + SPACING
        lines += [
            f"\t.globl {symbol}", f"{symbol} = {address:#x}", f"\t.type {symbol}, @object",
            '\t.asciz "Tarnick_VC_data"',
            f"\t.quad {address:#x}, {size}, 0",
            "\t.long 0x4F464E49", f"\t.short 0, {int(block.undefined)}",
            f"\t.quad {address:#x}, {size if block.undefined else 0}",
        ]  # fmt: skip
    lines.append('\t.section .note.GNU-stack,"",@progbits')
    return "\n".join(lines) + "\n"
