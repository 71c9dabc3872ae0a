"""A compiler's command line, read as far as the drivers must know it, and what they add to it."""

import os
import re
import shlex
import subprocess
import sys

import paths

# Options whose value is the next argument.
WITH_VALUE = {
    "-o", "-x", "-I", "-J", "-D", "-U", "-L", "-l", "-u", "-T", "-e", "-z", "-B", "-A",
    "-include", "-imacros", "-isystem", "-idirafter", "-iquote", "-iprefix", "-isysroot",
    "-iwithprefix", "-iwithprefixbefore", "-imultilib", "-MF", "-MT", "-MQ", "-Xlinker",
    "-Xassembler", "-Xpreprocessor", "-aux-info", "--param", "-dumpbase", "-dumpbase-ext",
    "-dumpdir", "-wrapper", "-specs", "--sysroot",
}  # fmt: skip
# Options with which no linking happens.
NO_LINK = {"-c", "-S", "-E", "-M", "-MM", "-fsyntax-only"}
# Options that print something about the compiler and do nothing else.
QUERIES = ("-print-", "-dump", "--print-", "--target-help", "--help=", "-Q")

FORTRAN_FIXED = (".f", ".for", ".ftn", ".fpp", ".F", ".FOR", ".FTN", ".FPP")
FORTRAN_FREE = (".f90", ".f95", ".f03", ".f08", ".F90", ".F95", ".F03", ".F08")
PREPROCESSED = (".F", ".FOR", ".FTN", ".fpp", ".FPP", ".F90", ".F95", ".F03", ".F08")


DEBUG_OPTION = re.compile(r"-g(\d|gdb\d?|dwarf.*|split-dwarf)?")


class UserError(Exception):
    pass


def expand_response_files(arguments, depth=0):
    out = []
    for argument in arguments:
        path = argument[1:]
        if argument.startswith("@") and os.path.isfile(path) and depth < 20:
            with open(path, encoding=sys.getfilesystemencoding(), errors="surrogateescape") as file:
                out += expand_response_files(shlex.split(file.read()), depth + 1)
        else:
            out.append(argument)
    return out


class CommandLine:
    """`items` are (kind, text, language): kind is "option" or "input", an option with its value is
    two words in one list."""

    def __init__(self, arguments):
        self.items = []
        self.output = None
        self.modes = set()
        language = None
        words = iter(expand_response_files(arguments))
        for word in words:
            if word in WITH_VALUE:
                value = next(words, None)
                if value is None:
                    raise UserError(f"the option {word} wants a value")
                if word == "-o":
                    self.output = value
                elif word == "-x":
                    language = None if value == "none" else value
                self.items.append(("option", [word, value], None))
            elif word.startswith("-o") and word != "-o":
                self.output = word[2:]
                self.items.append(("option", ["-o", word[2:]], None))
            elif word.startswith("-x") and len(word) > 2:
                language = None if word == "-xnone" else word[2:]
                self.items.append(("option", [word], None))
            elif word.startswith("-") and word != "-":
                if word in NO_LINK or word in ("-shared", "-r"):
                    self.modes.add(word)
                self.items.append(("option", [word], None))
            else:
                self.items.append(("input", [word], language))

    def has(self, *options):
        return any(kind == "option" and words[0] in options for kind, words, _ in self.items)

    def inputs(self):
        return [(words[0], language) for kind, words, language in self.items if kind == "input"]

    def is_query(self):
        return not self.inputs() or any(
            kind == "option" and words[0].startswith(QUERIES)
            and not words[0].startswith(("-dumpbase", "-dumpdir"))
            for kind, words, _ in self.items
        )

    def links(self):
        return not self.modes & NO_LINK and not self.is_query()

    def arguments(self):
        return [word for _, words, _ in self.items for word in words]

    def folders(self):
        """Where included files are looked for."""
        out = []
        for kind, words, _ in self.items:
            if kind == "option" and words[0] in ("-I", "-isystem", "-iquote"):
                out.append(words[1])
            elif kind == "option" and words[0].startswith("-I"):
                out.append(words[0][2:])
        return out


def take_choice(arguments, option, choices):
    """Takes `--option=choice` out of the arguments; the choice is the first one by default."""
    choice, rest = choices[0], []
    for argument in arguments:
        if argument == option or argument.startswith(option + "="):
            choice = argument.partition("=")[2]
            if choice not in choices:
                allowed = " and ".join(f"{option}={known}" for known in choices)
                raise UserError(f"{argument}: the choices are {allowed}")
        else:
            rest.append(argument)
    return choice, rest


def gets_library(command):
    """Whether the command is a link that takes libraries which aren't named on it."""
    whole = command.links() and "-r" not in command.modes
    return whole and not command.has("-nostdlib", "-nodefaultlibs")


def link_arguments(command, language, float_rules):
    """What a program needs of us at its link: the start-up object, and the library ahead of the
    compiler's own. With --as-needed the latter are loaded only where something of them is used."""
    if not gets_library(command):
        return []
    if command.has("-static", "-static-pie"):
        raise UserError("-static does not go here: tarnlibc is a shared library")
    out = ["-x", "none"] if command.has("-x") else []
    if "-shared" not in command.modes and not command.has("-nostartfiles"):
        rules = "native_" if float_rules == "native" else ""
        out.append(os.path.join(paths.START, f"tarn_start_{rules}{language}.o"))
    # -Xlinker, not -Wl: a folder's name may hold a comma.
    out += ["-L" + paths.LIB, "-Xlinker", "-rpath", "-Xlinker", paths.LIB]
    if language == "fortran" and not command.has("-fuse-ld=lld"):
        # Contained procedures that are handed on need it, and nobody can do anything about it. The
        # linker `lld` doesn't warn.
        out.append("-Wl,--no-warn-execstack")
    # Data and code in pages of their own, which the linker `gold` has no word for.
    pages = [] if command.has("-fuse-ld=gold") else ["-Wl,-z,separate-code"]
    return out + paths.LINK + pages + ["-Wl,--as-needed", "-ltarnlibc"]


def debug_arguments(command):
    """What the report of a failure needs: lines, and callers that are still there when the routine
    they called last has failed. The user's own options come behind these and count."""
    if command.is_query():
        return []
    decided = any(kind == "option" and DEBUG_OPTION.fullmatch(words[0])
                  for kind, words, _ in command.items)  # fmt: skip
    return ["-fno-optimize-sibling-calls"] + ([] if decided else ["-g1"])


def take_strip(command):
    """Takes -s out of a link: the map is made from what it would remove."""
    if not command.links() or "-r" in command.modes or not command.has("-s"):
        return False
    command.items = [item for item in command.items if item[1] != ["-s"]]
    return True


def drop_libraries(command, names):
    """Forgets libraries that the user names and the link has anyway. The compiler's own run-time
    would stand ahead of ours; and where gfortran sees -lm, it puts its run-time there."""
    if not gets_library(command):
        return
    unwanted = [word for name in names for word in ([f"-l{name}"], ["-l", name])]
    command.items = [item for item in command.items if item[1] not in unwanted]


def add_map(command, strip):
    """The linked program gets its map of routines and lines. Without one it works all the same."""
    if not command.links() or "-r" in command.modes:
        return
    program = command.output or "a.out"
    if os.path.isfile(program):
        subprocess.run([paths.TARNMAP, program], check=False)
        if strip:
            subprocess.run(compiler_of("TARN_STRIP", "strip") + ["-s", program], check=False)


def run_compiler(compiler, arguments, command, strip, variable):
    """A compiler that links is waited for."""
    if not command.links() or "-r" in command.modes:
        return replace_process(compiler, arguments, variable)
    try:
        status = subprocess.run(compiler + arguments, check=False).returncode
    except FileNotFoundError:
        raise missing(compiler, variable) from None
    if status == 0:
        add_map(command, strip)
    return status if status >= 0 else 1


def include_arguments(folders):
    return ["-I" + folder for folder in folders if os.path.isdir(folder)]


def compiler_of(variable, default):
    return shlex.split(os.environ.get(variable, "")) or [default]


def missing(compiler, variable):
    return UserError(f"the compiler `{compiler[0]}` was not found; install it, or name another one"
                     f" in the environment variable {variable}")  # fmt: skip


def version_text(driver, compiler, variable):
    try:
        shown = subprocess.run(compiler + ["--version"], capture_output=True, check=False)
    except FileNotFoundError:
        raise missing(compiler, variable) from None
    return f"{driver} (tarnlibc) {paths.VERSION}\nwith {os.fsdecode(shown.stdout)}"


def replace_process(compiler, arguments, variable):
    """Nothing is left to do after the compiler: it takes our place."""
    sys.stdout.flush()
    try:
        os.execvp(compiler[0], compiler + arguments)
    except FileNotFoundError:
        raise missing(compiler, variable) from None


def main_of(driver, run):
    try:
        return run(sys.argv[1:])
    except UserError as error:
        print(f"{driver}: error: {error}", file=sys.stderr)
    except OSError as error:
        print(f"{driver}: error: {error.filename or ''}: {error.strerror}", file=sys.stderr)
    except KeyboardInterrupt:
        return 130
    return 1
