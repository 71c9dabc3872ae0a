"""tarncc and tarnc++: C and C++ on tarnlibc. They only add to the compiler's command line."""

import paths
from command import (CommandLine, compiler_of, debug_arguments, drop_libraries,
                     include_arguments, link_arguments,
                     main_of, run_compiler, take_choice, take_strip, version_text)  # fmt: skip

HELP = """\
usage: {driver} [options] file...

Compiles and links {language} programs on the run-time library tarnlibc. Every option goes to the
compiler, {compiler}; the driver adds the library's headers, the library and its start-up object.

  --float=system         floating-point exceptions give their results quietly (the default)
  --float=native         all of them but the inexact one trap, as the library's own compilers start
  --version              the versions of driver and compiler
  --help                 this text

Environment: {variable} names another compiler.
"""


def main(driver, compiler, variable, language):
    def run(arguments):
        command_line = compiler_of(variable, compiler)
        if arguments == ["--help"]:
            print(HELP.format(driver=driver, language=language, compiler=compiler,
                              variable=variable), end="")  # fmt: skip
            return 0
        if arguments == ["--version"]:
            print(version_text(driver, command_line, variable), end="")
            return 0
        float_rules, arguments = take_choice(arguments, "--float", ["system", "native"])
        command = CommandLine(arguments)
        strip = take_strip(command)
        drop_libraries(command, ["gfortran"])
        added = include_arguments([paths.INCLUDE]) + debug_arguments(command) + command.arguments()
        added += link_arguments(command, "c", float_rules)
        return run_compiler(command_line, added, command, strip, variable)

    return main_of(driver, run)
