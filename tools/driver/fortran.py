"""tarnfc: Fortran on tarnlibc.

Most programs only need more words on gfortran's command line. Two kinds of sources need work:

- one that calls the library's own routines (`winio@`): its names are rewritten (rewrite.py), and
  gfortran compiles the rewritten text, with line markers so that messages, debug information and
  the run-time's reports name the user's file;
- with --dialect=native, every one: the entries that open I/O statements are renamed in the object.

Then each source is compiled by itself, in the order given, and the objects take the places of the
sources on the link line.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

import calls
import paths
import virtual_common
from command import (FORTRAN_FIXED, FORTRAN_FREE, PREPROCESSED, CommandLine, UserError,
                     add_map, compiler_of, debug_arguments, drop_libraries,
                     include_arguments, link_arguments,
                     main_of, missing, run_compiler, take_choice, take_strip, version_text)  # fmt: skip
from rewrite import Form, mentions_names, read, rewrite

VARIABLE = "TARN_FC"

# The entries that open a statement; the dialect is chosen there, and the rest follows it.
OPENING = ("open", "close", "inquire", "read", "write", "rewind", "backspace", "endfile", "flush")
OPENING_NAME = re.compile(rb"\b_gfortran_st_(" + "|".join(OPENING).encode() + rb")\b")

HELP = """\
usage: tarnfc [options] file...

Compiles and links Fortran programs on the run-time library tarnlibc. Every other option goes to
the compiler, gfortran; the driver adds the library and its start-up object. In sources, the names
of the library's own routines may be written as they are, with their `@`.

  --dialect=gnu          input and output as gfortran's own run-time does them (the default)
  --dialect=native       input and output as the library's own compilers expect them
  --float=system         floating-point exceptions give their results quietly (the default)
  --float=native         all of them but the inexact one trap, as the library's own compilers start
  --virtual-common=NAME  the COMMON block NAME takes memory only where it is touched and may be as
                         large as the address space; all sources that have it want the option.
                         NAME:0x300000000000 is at that address, NAME:undefined reads as bytes of
                         80 (hexadecimal) until it is set, // is the block without a name
  --version              the versions of driver and compiler
  --help                 this text

A source that calls winio@ is compiled without -flto, so that the arguments of its calls can be
checked; with --virtual-common all are, since the sizes of the blocks come from the objects.

Environment: TARN_FC names another gfortran, TARN_OBJCOPY another objcopy, TARN_NM another nm.
"""


class Source:
    """A Fortran source on the command line."""

    def __init__(self, path, language, command):
        self.path = path
        suffix = os.path.splitext(path)[1]
        self.preprocessed = suffix in PREPROCESSED
        fixed = suffix in FORTRAN_FIXED
        if language:
            fixed = language.startswith("f77")
            self.preprocessed = language.endswith("-cpp-input")
        self.form = Form(fixed=fixed)
        for kind, words, _ in command.items:
            if kind == "option":
                self._read_option(words[0])

    def _read_option(self, option):
        if option in ("-ffree-form", "-ffixed-form"):
            self.form.fixed = option == "-ffixed-form"
        elif match := re.fullmatch(r"-ffixed-line-length-(none|\d+)", option):
            self.form.line_length = 0 if match[1] == "none" else int(match[1])
        elif option == "-fopenmp":
            self.form.openmp = True
        elif option in ("-fd-lines-as-code", "-fd-lines-as-comments"):
            self.form.d_lines = option == "-fd-lines-as-code"
        elif option == "-fbackslash":
            self.form.backslash = True
        elif option in ("-cpp", "-nocpp"):
            self.preprocessed = option == "-cpp"


def is_fortran(path, language):
    if language:
        return language.startswith(("f77", "f95"))
    return path.endswith(FORTRAN_FIXED + FORTRAN_FREE)


class Build:
    """One command whose sources need work."""

    def __init__(self, compiler, command, native, common_blocks, folder):
        self.compiler = compiler
        self.command = command
        self.native = native
        self.common_blocks = common_blocks  # the virtual ones
        self.folder = folder  # for what lives as long as the command
        self.count = 0
        # What each compilation is given: everything but inputs, the output and the language.
        self.options = [
            word
            for kind, words, _ in command.items
            if kind == "option" and words[0] != "-o" and not words[0].startswith("-x")
            for word in words
        ]  # fmt: skip
        self.colour = "always" if sys.stderr.isatty() else "auto"

    def temporary(self, suffix):
        self.count += 1
        return os.path.join(self.folder, f"{self.count}{suffix}")

    def run(self, arguments, names=()):
        """Runs the compiler; messages show the names as the user wrote them."""
        if not names:
            return subprocess.run(self.compiler + arguments, check=False).returncode
        arguments = [f"-fdiagnostics-color={self.colour}"] + arguments
        result = subprocess.run(self.compiler + arguments, stderr=subprocess.PIPE, check=False)
        pattern = "|".join(sorted(map(re.escape, names), key=len, reverse=True))
        pattern = re.compile(rf"\b({pattern})_(?!\w)".encode("latin-1"), re.IGNORECASE)
        sys.stderr.buffer.write(pattern.sub(rb"\1@", result.stderr))
        sys.stderr.flush()
        return result.returncode

    def preprocess(self, source):
        """The source as gfortran's preprocessor leaves it, or nothing where it fails."""
        text = self.temporary(".i")
        arguments = [option for option in self.options if option not in ("-c", "-S", "-fsyntax-only")]
        form = "f77-cpp-input" if source.form.fixed else "f95-cpp-input"
        arguments += ["-E", "-x", form, source.path, "-o", text]
        return text if self.run(arguments) == 0 else None

    def rewritten(self, source):
        """A file that holds the source with its names rewritten, and the names."""
        folders = self.command.folders()
        if not mentions_names(source.path, folders):
            return source.path, set()
        path = source.path
        if source.preprocessed:
            path = self.preprocess(source)
            if path is None:
                return None, set()
        text, names = rewrite(read(path), source.form, source.path, folders)
        name = source.path.replace("\\", "\\\\").replace('"', '\\"')
        heading = f'# 1 "{name}"\n# 1 "{os.getcwd()}//"\n# 1 "{name}"\n'
        out = self.temporary(".f" if source.form.fixed else ".f90")
        with open(out, "w", encoding="latin-1", newline="") as file:
            file.write(heading.encode("utf-8", "surrogateescape").decode("latin-1") + text)
        return out, names

    def compile(self, source, output, mode):
        path, names = self.rewritten(source)
        if path is None:
            return False
        arguments = list(self.options)
        if mode not in arguments:
            arguments.append(mode)
        if path != source.path:
            arguments += ["-fpreprocessed", "-I" + (os.path.dirname(source.path) or ".")]
        form = "f77" if source.form.fixed else "f95"
        if source.preprocessed and path == source.path:
            form += "-cpp-input"
        arguments += ["-x", form, path]
        if output and self.has_open_lists(names):
            done = self.compile_with_calls(arguments, names, output, mode)
        else:
            done = self.run(arguments + (["-o", output] if output else []), names) == 0
        return done and (not self.native or not output or self.make_native(output, mode))

    def has_open_lists(self, names):
        """Calls whose arguments the library must know."""
        return any(name + "_" in calls.ROUTINES for name in names)

    def compile_with_calls(self, arguments, names, output, mode):
        """By way of the assembly, into which go the records of calls.py."""
        raw, placed, assembly = (self.temporary(suffix) for suffix in (".raw", ".lines", ".s"))
        arguments = [word for word in arguments if word not in ("-c", "-S")] + ["-S"]
        arguments += ["-fallow-argument-mismatch", "-fno-optimize-sibling-calls"]
        # Code that is made when the program is linked would have no records.
        arguments.append("-fno-lto")
        if not any(re.fullmatch(r"-g(|[1-3]|gdb[1-3]?|dwarf.*)", option) for option in self.options):
            arguments.append("-g1")  # the places of the calls
        if self.run(arguments + ["-fdump-tree-original-lineno=" + placed, "-o", assembly], names):
            return False
        # The second look is for its dump alone: what it has to say was said.
        # Of the two ways in which the compiler keeps `.and.` and `.or.`, the raw dump shows the
        # operands of only one: the one of the front end's own optimization.
        quiet = ["-w", "-O0", "-ffrontend-optimize", "-fdump-tree-original-raw=" + raw]
        quiet += ["-o", os.devnull]
        subprocess.run(self.compiler + arguments + quiet, stderr=subprocess.DEVNULL, check=False)
        if os.path.isfile(raw) and os.path.isfile(placed):
            text = calls.annotate(read(assembly), calls.records(read(raw), read(placed)))
            with open(assembly, "w", encoding="latin-1", newline="") as file:
                file.write(text)
        if mode == "-S":
            shutil.copyfile(assembly, output)
            return True
        assembled = [option for option in self.options
                     if option.startswith(("-m", "-Wa,", "-B", "--sysroot"))]  # fmt: skip
        return self.run(assembled + ["-c", "-x", "assembler", assembly, "-o", output]) == 0

    def make_native(self, output, mode):
        if mode == "-S":
            with open(output, "rb") as file:
                text = file.read()
            with open(output, "wb") as file:
                file.write(OPENING_NAME.sub(rb"tarn_native_st_\1", text))
            return True
        objcopy = compiler_of("TARN_OBJCOPY", "objcopy")
        pairs = [f"--redefine-sym=_gfortran_st_{name}=tarn_native_st_{name}" for name in OPENING]
        try:
            return subprocess.run(objcopy + pairs + [output], check=False).returncode == 0
        except FileNotFoundError:
            raise missing(objcopy, "TARN_OBJCOPY") from None

    def compile_only(self, sources, mode):
        """-c, -S and -fsyntax-only: each source gives its own output, and other inputs nothing. One
        that fails doesn't keep the others from being compiled."""
        suffix = {"-c": ".o", "-S": ".s"}.get(mode)
        status = 0
        for source in sources:
            stem = os.path.splitext(os.path.basename(source.path))[0]
            output = (self.command.output or stem + suffix) if suffix else None
            if not self.compile(source, output, mode):
                status = 1
        return status

    def compile_and_link(self, sources, added):
        by_path = {source.path: source for source in sources}
        arguments = []
        objects = []
        forced = failed = False
        for kind, words, language in self.command.items:
            source = by_path.get(words[0]) if kind == "input" else None
            if source is None:
                arguments += words
                objects += words if kind == "input" else []
                forced = forced or words[0].startswith("-x")
                continue
            output = self.temporary(".o")
            stem = os.path.basename(self.command.output or "a")
            place = os.path.join(os.path.dirname(self.command.output or ""), stem + "-")
            name = os.path.basename(source.path)
            if "-dumpdir" not in self.options:
                # Where gfortran would put what goes with an object (coverage notes and the like).
                self.options += ["-dumpdir", place, "-dumpbase", name]
                self.options += ["-dumpbase-ext", os.path.splitext(name)[1]]
                done = self.compile(source, output, "-c")
                del self.options[-6:]
            else:
                done = self.compile(source, output, "-c")
            failed = failed or not done
            objects.append(output)
            arguments += ["-x", "none", output] if forced else [output]
            if forced and language:
                arguments += ["-x", language]
        if failed:
            return 1
        if self.common_blocks:
            if forced:
                arguments += ["-x", "none"]
            arguments += virtual_common.LINK + [self.common_records(objects)]
        return self.run(arguments + added)

    def common_records(self, objects):
        assembly, output = self.temporary(".s"), self.temporary(".o")
        with open(assembly, "w", encoding="ascii") as file:
            file.write(virtual_common.assembly(self.common_blocks, objects))
        if self.run(["-c", assembly, "-o", output]) != 0:
            raise UserError(f"{virtual_common.OPTION}: the assembler failed")
        return output


def check_virtual_common(blocks, command):
    if not blocks:
        return
    options = [words[0] for kind, words, _ in command.items if kind == "option"]
    for option in options:
        if option in ("-shared", "-pie", "-fpie", "-fPIE", "-fPIC"):
            raise UserError(f"{virtual_common.OPTION} does not go with {option}")


def needs_work(sources, native, command):
    return sources and (
        native or any(mentions_names(source.path, command.folders()) for source in sources)
    )


def run(arguments):
    compiler = compiler_of(VARIABLE, "gfortran")
    if arguments == ["--help"]:
        print(HELP, end="")
        return 0
    if arguments == ["--version"]:
        print(version_text("tarnfc", compiler, VARIABLE), end="")
        return 0
    dialect, arguments = take_choice(arguments, "--dialect", ["gnu", "native"])
    float_rules, arguments = take_choice(arguments, "--float", ["system", "native"])
    common_blocks, arguments = virtual_common.take(arguments)
    native = dialect == "native"
    command = CommandLine(arguments)
    check_virtual_common(common_blocks, command)
    if native and any(w[0].startswith("-flto") for k, w, _ in command.items if k == "option"):
        raise UserError("--dialect=native does not go with -flto: it works on finished objects")
    strip = take_strip(command)
    drop_libraries(command, ["gfortran", "m"])
    if common_blocks:
        command.items += [("option", [word], None) for word in virtual_common.COMPILE]
    added = include_arguments([paths.INCLUDE, paths.MODULES])
    command.items = [("option", [word], None) for word in debug_arguments(command)] + command.items
    command.items += [("option", [word], None) for word in added]
    linked = link_arguments(command, "fortran", float_rules)

    inputs = command.inputs()
    sources = [
        Source(path, language, command)
        for path, language in inputs
        if is_fortran(path, language) and os.path.isfile(path)
    ]
    only = next((mode for mode in ("-S", "-c", "-fsyntax-only") if mode in command.modes), None)
    plain = (
        command.is_query()
        or command.modes & {"-E", "-M", "-MM"}
        or (only and command.output and len(inputs) > 1)  # gfortran has the words for that
    )
    if plain or not (needs_work(sources, native, command) or common_blocks and command.links()):
        return run_compiler(compiler, command.arguments() + linked, command, strip, VARIABLE)
    if not shutil.which(compiler[0]):
        raise missing(compiler, VARIABLE)
    with tempfile.TemporaryDirectory(prefix="tarnfc-") as folder:
        build = Build(compiler, command, native, common_blocks, folder)
        if only:
            return build.compile_only(sources, only)
        status = build.compile_and_link(sources, linked)
        if status == 0:
            add_map(command, strip)
        return status


def main():
    return main_of("tarnfc", run)
