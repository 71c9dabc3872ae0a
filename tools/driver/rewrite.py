"""The library's own routines bear names that end in `@`, which is no character of a Fortran name.

`rewrite` puts `_` in its place: `winio@` becomes `winio_`, which gfortran's code calls as `winio__`,
the spelling that the library exports. The text keeps its length, so columns and fixed form stay as
they are. Character constants, Hollerith constants and comments are left alone.

Text is str in latin-1: a byte is a character, and goes out as it came in.
"""

import os
import re
from dataclasses import dataclass, field

NAME_CHARACTER = re.compile(r"[A-Za-z0-9_$]")
# A count before `H`, not part of a name, a number or a kind (`integer*4 hour`).
HOLLERITH = re.compile(r"(?<![\w.*$])(\d{1,4})[Hh]")
INCLUDE = re.compile(r"""\s*include\s*(['"])(?P<file>[^'"]+)\1\s*(?:!.*)?$""", re.IGNORECASE)
CPP_INCLUDE = re.compile(r"""\s*#\s*include\s*["<](?P<file>[^">]+)[">]""")
INCLUDE_DEPTH = 20


@dataclass
class Form:
    """How the source is laid out, as gfortran's options say."""

    fixed: bool = False
    line_length: int = 72  # of fixed form; 0 is unlimited
    openmp: bool = False  # lines behind `!$` are code
    d_lines: bool = False  # lines that begin with `d` are code
    backslash: bool = False  # a backslash in a constant quotes the next character


@dataclass
class Scanner:
    """Walks over the statements of one file, line by line; a constant may go on over lines."""

    form: Form
    names: set = field(default_factory=set)
    quote: str = ""  # inside a constant: its delimiter
    hollerith: int = 0  # characters of a Hollerith constant still to come
    name: str = ""  # the name that ends where we are, and in fixed form blanks behind it
    gap: bool = False  # such blanks have been seen
    continued: bool = False  # free form: the line before ended in `&`

    def line(self, text):
        if text.startswith("#"):
            return text
        body = text.rstrip("\r\n")
        end = text[len(body):]
        start, stop = self._fixed_field(body) if self.form.fixed else self._free_field(body)
        if start is None:
            return text
        code = self._code(body, start, stop)
        return body[:start] + code + body[stop:] + end

    def _new_statement(self):
        self.quote, self.hollerith, self.name, self.gap = "", 0, "", False

    def _is_directive(self, body, at):
        return self.form.openmp and body[at:at + 2] == "!$"

    def _free_field(self, body):
        """The part of a free form line that holds code; no start for a comment."""
        at = len(body) - len(body.lstrip(" \t"))
        if at == len(body) or body[at] == "!" and not self._is_directive(body, at):
            return None, None
        if body[at] == "!":
            at += 2
        elif self.continued and body[at] == "&":
            at += 1
        elif self.continued:
            at = 0 if self.quote else at
        if not self.continued:
            self._new_statement()
        return at, len(body)

    def _fixed_field(self, body):
        """The same for fixed form: the columns behind the sixth, up to the line's length."""
        if not body.strip() or self._is_fixed_comment(body):
            return None, None
        tab = body[:6].find("\t")
        if tab >= 0:
            goes_on = body[tab + 1:tab + 2] in set("123456789")
            start = tab + 2 if goes_on else tab + 1
            stop = start + self.form.line_length - 6
        else:
            goes_on = body[5:6] not in ("", " ", "0")
            start, stop = 6, self.form.line_length
        if not goes_on:
            self._new_statement()
        return min(start, len(body)), len(body) if self.form.line_length == 0 else min(stop, len(body))

    def _is_fixed_comment(self, body):
        if self.form.openmp and body[0] in "cC*!" and body[1:2] == "$":
            return False
        if body[0] in "cC*!" or body[0] in "dD" and not self.form.d_lines:
            return True
        first = len(body) - len(body.lstrip(" \t"))
        return body[first] == "!" and (first != 5 or "\t" in body[:5])

    def _code(self, body, start, stop):
        out = []
        at = start
        self.continued = False
        while at < stop:
            char = body[at]
            if self.hollerith:
                self.hollerith -= 1
            elif self.quote:
                if char == "\\" and self.form.backslash:
                    out.append(char)
                    at += 1
                    char = body[at:min(at + 1, stop)]
                elif char == self.quote:
                    self.quote = ""
            elif char == "!":
                break
            elif char == "&" and self._ends_line(body[at + 1:stop]):
                self.continued = True
                break
            elif char in "'\"":
                self.quote, self.name = char, ""
            elif char == "@" and self.name:
                self.names.add(self.name.lower())
                self.name = ""
                char = "_"
            elif not self.name and (count := HOLLERITH.match(body, at, stop)):
                out.append(count.group())
                self.hollerith = int(count.group(1))
                at = count.end()
                continue
            elif NAME_CHARACTER.match(char):
                self.name = char if self.gap else self.name + char
                self.gap = False
            elif self.form.fixed and char in " \t":
                self.gap = True  # blanks mean nothing in fixed form
            else:
                self.name = ""
            out.append(char)
            at += 1
        self._end_of_line(body, at, stop)
        return "".join(out) + body[at:stop]

    def _ends_line(self, rest):
        rest = rest.lstrip(" \t")
        return not self.form.fixed and (not rest or rest[0] == "!")

    def _end_of_line(self, body, at, stop):
        if self.form.fixed:
            # What is short of the line's length counts as blanks.
            if self.hollerith and self.form.line_length:
                self.hollerith = max(0, self.hollerith - (self.form.line_length - at))
            return
        if self.quote and body[:stop].rstrip(" \t").endswith("&"):
            self.continued = True
        if not self.continued:
            self._new_statement()
        self.hollerith = 0


def lines_of(text):
    """The lines with their ends. (splitlines knows line ends that a compiler doesn't.)"""
    return re.findall(r"[^\n]*\n|[^\n]+", text)


def find_file(name, folders):
    for folder in folders:
        path = os.path.join(folder, name)
        if os.path.isfile(path):
            return path
    return None


def read(path):
    with open(path, encoding="latin-1", newline="") as file:
        return file.read()


def mentions_names(path, folders, depth=0):
    """Tells whether a source, or anything that it includes, holds an `@` at all."""
    text = read(path)
    if "@" in text:
        return True
    if depth == INCLUDE_DEPTH or "include" not in text.lower():
        return False
    here = [os.path.dirname(path)] + folders
    for line in lines_of(text):
        found = INCLUDE.match(line.rstrip("\r\n")) or CPP_INCLUDE.match(line)
        included = found and find_file(found["file"], here)
        if included and mentions_names(included, folders, depth + 1):
            return True
    return False


def rewrite(text, form, path, folders, names=None, depth=0):
    """Rewrites a source. An INCLUDE line whose file needs rewriting gives way to the file's text
    between line markers, as a preprocessor does it, so that messages name the user's files."""
    scanner = Scanner(form)
    here = [os.path.dirname(path)] + folders
    out = []
    for number, line in enumerate(lines_of(text), 1):
        found = INCLUDE.match(line.rstrip("\r\n")) if depth < INCLUDE_DEPTH else None
        included = found and find_file(found["file"], here)
        if included and mentions_names(included, folders):
            inner, inner_names = rewrite(read(included), form, included, folders, None, depth + 1)
            if inner and not inner.endswith("\n"):
                inner += "\n"
            out.append(f'# 1 "{included}" 1\n{inner}# {number + 1} "{path}" 2\n')
            scanner.names |= inner_names
        else:
            out.append(scanner.line(line))
    return "".join(out), scanner.names
