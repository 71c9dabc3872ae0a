"""What a call of a routine with an open argument list passes: `winio@` and its kin.

gfortran passes bare addresses, so the library can't see how many arguments came, of which type,
and whether one is a variable at all. The compiler knows: its dumps of the parsed program tell every
call. For each call a record goes into the object, and a no-op instruction behind the call points
to it:

    call    winio__
    nopl    offset(%rdx)        the offset leads from behind the instruction to the record

The library looks at its return address and finds the record, in any kind of module and without
anything to register. The record, in `.rodata`: "TARNCALL"; the number of variants (32 bits; calls
in one statement share a place in the source and so a record); for each variant: the number of
arguments (32 bits), and terminated texts: the format where it is a constant (otherwise empty), the
type tokens, and each argument as the source spells it, as far as the dump tells.

Tokens: `*I *J *F *C *S *E` a variable of INTEGER*4, INTEGER*8, REAL*8, CHARACTER, a structure, and
a procedure; `*K *R *U` INTEGER*1 or *2, REAL*4, anything else. In lower case: the value of an
expression or a constant, which nothing may be bound to.
"""

import os
import re
from dataclasses import dataclass, field

# Without the underscore that gfortran adds.
ROUTINES = ("winio_", "window_printf_")

MAGIC = "TARNCALL"
NOP = ".byte 0x0f, 0x1f, 0x82"  # nopl disp32(%rdx): no compiler pads with this one


@dataclass
class Argument:
    token: str
    name: str


@dataclass
class Call:
    text: str = ""  # of the format, if it is a constant
    arguments: list = field(default_factory=list)


# ---- The raw dump: typed nodes ------------------------------------------------------------------

NODE = re.compile(r"^@(\d+)\s+(\w+)\s*")
FIELD = re.compile(r"(\w[\w ]{0,4}?)\s*: (@\d+|\S+)")
# What leads to types and declarations, not to operands.
ASIDE = {"type", "name", "mngl", "scpe", "size", "srcp", "fn", "algn", "prec", "min", "max", "vars",
         "unql", "domn", "elts", "ptd", "refd", "chan", "prms", "retn", "flds", "tag", "bpos",
         "sign", "lngt", "used", "link", "note", "qual", "int", "strg", "idx", "cnst"}  # fmt: skip


class Nodes:
    """One function of the raw dump."""

    def __init__(self, lines):
        self.kinds = {}
        self.fields = {}
        text = ""
        for line in lines:
            if line.startswith("@"):
                self._add(text)
                text = line
            else:
                text += "\n" + line
        self._add(text)

    def _add(self, text):
        head = NODE.match(text)
        if not head:
            return
        number, kind = head[1], head[2]
        rest = text[head.end():]
        fields = {}
        if kind == "string_cst":
            # The text may hold anything; its length stands behind it.
            start = rest.find("strg: ")
            stop = rest.rfind("lngt:")
            fields["strg"] = rest[start + 6:stop].rstrip(" ").removesuffix("\n") if start >= 0 else ""
            length = re.match(r"lngt:\s*(\d+)", rest[stop:]) if stop >= 0 else None
            fields["lngt"] = int(length[1]) if length else 0
            found = re.match(r"type: @(\d+)", rest)
            fields["type"] = found[1] if found else ""
        else:
            for key, value in FIELD.findall(rest):
                fields.setdefault(key.strip(), value.lstrip("@"))
            if re.search(r"note: artificial", rest):
                fields["artificial"] = "1"
        self.kinds[number] = kind
        self.fields[number] = fields

    def kind(self, number):
        return self.kinds.get(number, "")

    def get(self, number, key):
        return self.fields.get(number, {}).get(key, "")

    def name(self, number):
        return self.get(self.get(number, "name"), "strg")

    def operands(self, number):
        def order(key):
            digits = re.sub(r"\D", "", key)
            return (key == "body", int(digits) if digits else -1)

        fields = self.fields.get(number, {})
        return [fields[key] for key in sorted(fields, key=order)
                if key not in ASIDE and fields[key] in self.kinds]  # fmt: skip

    def calls(self):
        """The calls of our routines, in the order of the source."""
        out, seen = [], set()
        stack = ["1"]
        while stack:
            number = stack.pop()
            if number in seen:
                continue
            seen.add(number)
            # A declaration's operands aren't part of the code; the function itself is.
            if self.kind(number).endswith("_decl") and number != "1":
                continue
            if self.kind(number) == "call_expr":
                callee = self.get(self.get(number, "fn"), "op 0")
                if self.name(callee) in ROUTINES:
                    out.append(self.call(number))
            stack += reversed(self.operands(number))
        return out

    # Types.

    def pointed(self, number):
        type_of = self.get(number, "type")
        return self.get(type_of, "ptd") or self.get(type_of, "refd")

    def letter(self, type_of):
        kind = self.kind(type_of)
        if kind == "array_type":
            return self.letter(self.get(type_of, "elts"))
        bits = self.get(type_of, "prec")
        if kind == "integer_type":
            if self._type_name(type_of).startswith("character"):
                return "C"
            return {"32": "I", "64": "J"}.get(bits, "K")
        if kind == "boolean_type":
            return "I" if self._bits(type_of) == 32 else "U"
        if kind == "real_type":
            return {"64": "F", "32": "R"}.get(bits, "U")
        if kind == "record_type":
            return "S"
        if kind == "function_type":
            return "E"
        return "U"

    def _type_name(self, type_of):
        return self.name(self.get(type_of, "name"))

    def _bits(self, type_of):
        size = self.get(self.get(type_of, "size"), "int")
        return int(size) if size.lstrip("-").isdigit() else 0

    # Arguments.

    def call(self, number):
        fields = self.fields[number]
        operands = []
        while str(len(operands)) in fields:
            operands.append(fields[str(len(operands))])
        call = Call(text=self.constant_text(operands[0]) if operands else "")
        # Behind the arguments stand the lengths of the CHARACTER ones, as values.
        for operand in operands[1:]:
            argument = self.argument(operand)
            if argument is None:
                break
            call.arguments.append(argument)
        return call

    def constant_text(self, operand):
        inner = self.get(operand, "op 0")
        if self.kind(inner) == "array_ref":
            inner = self.get(inner, "op 0")
        if self.kind(inner) != "string_cst":
            return ""
        text = self.get(inner, "strg")
        return text if len(text) == self.get(inner, "lngt") else ""

    def argument(self, operand):
        """None for what isn't an address: the arguments are over."""
        target = self.pointed(operand)
        if not target:
            return None
        letter = self.letter(target)
        kind = self.kind(operand)
        while kind in ("nop_expr", "convert_expr", "non_lvalue_expr", "view_convert_expr"):
            operand = self.get(operand, "op 0")
            kind = self.kind(operand)
        if kind != "addr_expr":
            # A pointer: a dummy argument, an allocatable, or array data; or what a call returned.
            name = self.spelling(operand)
            bound = kind in ("var_decl", "parm_decl", "component_ref") and "." not in name
            if letter == "E" or bound:
                return Argument("*" + letter, name)
            return Argument("*" + letter.lower(), "an expression")
        inner = self.get(operand, "op 0")
        if self.kind(inner) == "function_decl":
            return Argument("*E", self.name(inner))
        fixed = self.is_value(inner)
        return Argument("*" + (letter.lower() if fixed else letter), self.spelling(inner))

    def is_value(self, number):
        kind = self.kind(number)
        while kind in ("array_ref", "component_ref", "array_range_ref", "realpart_expr"):
            number = self.get(number, "op 0")
            kind = self.kind(number)
        if kind in ("string_cst", "const_decl", "integer_cst", "real_cst"):
            return True
        # A temporary of the compiler's has no name in the source.
        return kind == "var_decl" and bool(self.get(number, "artificial")) and not self.name(number)

    def spelling(self, number):
        kind = self.kind(number)
        if kind in ("var_decl", "parm_decl"):
            name = self.name(number)
            if not name and self.get(number, "artificial"):
                return "an expression"
            return name
        if kind == "component_ref":
            inner = self.spelling(self.get(number, "op 0"))
            part = self.name(self.get(number, "op 1"))
            return inner if part == "data" else f"{inner}%{part}"
        if kind in ("array_ref", "indirect_ref", "mem_ref"):
            inner = self.spelling(self.get(number, "op 0"))
            return inner + "(...)" if kind == "array_ref" and self.kind(
                self.get(number, "op 0")) != "string_cst" else inner  # fmt: skip
        if kind == "string_cst":
            return "'" + self.get(number, "strg")[:40] + "'"
        if kind == "const_decl":
            return self.get(self.get(number, "cnst"), "int") or "a constant"
        if kind in ("nop_expr", "non_lvalue_expr", "convert_expr", "save_expr"):
            return self.spelling(self.get(number, "op 0"))
        return "an expression"


def calls_of_raw_dump(text):
    out, lines = [], []
    for line in text.split("\n"):
        if line.startswith("@1 ") and lines:
            out += Nodes(lines).calls()
            lines = []
        if line.startswith("@") or lines:
            lines.append(line)
    return out + (Nodes(lines).calls() if lines else [])


# ---- The dump with places -----------------------------------------------------------------------

PLACED = re.compile(r"\[([^\[\]:\n]+):(\d+):(\d+)\]|\b(" + "|".join(ROUTINES) + r") \(")
CONSTANT = re.compile(r'(?:\[[^\]]*\] )?&(?:\[[^\]]*\] )?"((?:[^"\\]|\\.)*)"')
ESCAPE = re.compile(r"\\(?:([0-7]{1,3})|(.))")
ESCAPED = {"n": "\n", "t": "\t", "f": "\f", "r": "\r", "v": "\v", "b": "\b", "a": "\a"}


def plain(text):
    return ESCAPE.sub(lambda m: chr(int(m[1], 8)) if m[1] else ESCAPED.get(m[2], m[2]), text)


def places_of_dump(text):
    """The (file, line, column) of each call and its format, in the order of the source."""
    out, place = [], None
    for found in PLACED.finditer(text):
        if not found[4]:
            place = (os.path.basename(found[1]), int(found[2]), int(found[3]))
            continue
        constant = CONSTANT.match(text, found.end())
        out.append((place, plain(constant[1]) if constant else ""))
    return out


def records(raw_dump, placed_dump):
    """The calls of each place. One that the raw dump doesn't show gets no record, and the library
    makes do without."""
    out = {}
    places = iter(places_of_dump(placed_dump))
    for call in calls_of_raw_dump(raw_dump):
        place = next((place for place, text in places if text == call.text), None)
        if place is None:
            break
        out.setdefault(place, []).append(call)
    return out


# ---- The assembly -------------------------------------------------------------------------------

FILE = re.compile(r'^\s*\.file\s+(\d+)\s+(?:"[^"]*"\s+)?"([^"]*)"')
LOC = re.compile(r"^\s*\.loc\s+(\d+)\s+(\d+)\s+(\d+)")
CALL = re.compile(r"^\s*call[q]?\s+\*?(" + "|".join(name + "_" for name in ROUTINES) + r")\b")


def quoted(text):
    out = ""
    for byte in text.encode("latin-1", "replace"):
        out += chr(byte) if 32 <= byte < 127 and byte not in (34, 92) else f"\\{byte:03o}"
    return f'"{out}"'


def record_text(label, calls):
    lines = [f"{label}:", f'\t.ascii "{MAGIC}"', f"\t.long {len(calls)}"]
    for call in calls:
        lines.append(f"\t.long {len(call.arguments)}")
        tokens = "".join(argument.token for argument in call.arguments)
        texts = [call.text.replace("\0", ""), tokens]
        texts += [argument.name.replace("\0", "")[:60] for argument in call.arguments]
        lines += [f"\t.string {quoted(text)}" for text in texts]
    return lines


def annotate(assembly, known):
    """The assembly with a pointer behind each call whose place is known."""
    files, place, out, labels = {}, None, [], {}
    for line in assembly.split("\n"):
        out.append(line)
        if found := FILE.match(line):
            files[found[1]] = os.path.basename(found[2])
        elif found := LOC.match(line):
            place = (files.get(found[1], ""), int(found[2]), int(found[3]))
        elif CALL.match(line) and place in known:
            label = labels.setdefault(place, f".Ltarncall{len(labels)}")
            out += [f"\t{NOP}", f"\t.long {label} - . - 4"]
    if labels:
        # Behind everything, so that the compiler's own sections stay as they are.
        tail = ['\t.section .rodata.tarncalls,"a",@progbits']
        for place, label in labels.items():
            tail += record_text(label, known[place])
        out += tail
    return "\n".join(out) + "\n"
