"""The drivers as a user runs them, from the build tree, in a folder whose name holds blanks.

usage: drivers_test.py FOLDER-OF-THE-DRIVERS [test...]
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

DRIVERS = os.path.abspath(sys.argv.pop(1))

HELLO = "program hello\n  print '(a,i0)', 'a@b ', 42\nend program\n"
CALLER = """\
module caller
  implicit none
  external show@
contains
  subroutine run()
    include 'names.inc'
    call show@('x@y')
    call again@(7)
  end subroutine
end module
"""
ROUTINES = """\
C     A COMMENT'S @
      SUBROUTINE SHOW@(S)
      CHARACTER*(*) S
      WRITE(*,10) S
 10   FORMAT(4H@'A@,1X,A)
      END
      SUBROUTINE AGAIN@(I)
      PRINT '(A,I3)', 'AGAIN@
     1@', I
      END
"""


def text_of(result):
    return os.fsdecode(result.stdout) + os.fsdecode(result.stderr)


class Drivers(unittest.TestCase):
    def setUp(self):
        self.folder = os.path.join(tempfile.mkdtemp(), "a folder, with blanks")
        os.mkdir(self.folder)
        self.addCleanup(shutil.rmtree, os.path.dirname(self.folder))

    def put(self, **files):
        for name, text in files.items():
            with open(os.path.join(self.folder, name.replace("_", ".", 1)), "w") as file:
                file.write(text)

    def run_in(self, *command, status=0, **environment):
        result = subprocess.run(command, cwd=self.folder, capture_output=True, check=False,
                                timeout=120, env={**os.environ, **environment})  # fmt: skip
        self.assertEqual(result.returncode, status, text_of(result))
        return result

    def tarnfc(self, *arguments, driver="tarnfc", **options):
        return self.run_in(os.path.join(DRIVERS, driver), *arguments, **options)

    def needed(self, program):
        shown = os.fsdecode(self.run_in("readelf", "-d", program).stdout)
        return re.findall(r"\(NEEDED\).*\[(.*)\]", shown)

    def output(self, program):
        return os.fsdecode(self.run_in(os.path.join(self.folder, program)).stdout)

    def symbols(self, file):
        return set(os.fsdecode(self.run_in("nm", "-P", file).stdout).split())

    def test_one_step(self):
        self.put(hello_f90=HELLO)
        self.tarnfc("hello.f90", "-o", "the program")
        self.assertEqual(self.output("the program"), "a@b 42\n")
        needed = self.needed("the program")
        self.assertIn("libtarnlibc.so.0", needed)
        for unused in ("libgfortran.so.5", "libquadmath.so.0", "libstdc++.so.6"):
            self.assertNotIn(unused, needed)
        self.tarnfc("hello.f90", "-oother")
        self.assertEqual(self.output("other"), "a@b 42\n")

    def test_the_compilers_own_run_time_stays_out(self):
        self.put(hello_f90=HELLO, sub_f90="subroutine s\nprint *, 1\nend\n",
                 main_c="void s_(void); int main(void) { s_(); return 0; }\n")  # fmt: skip
        for words in (["-lm"], ["-l", "m", "-lgfortran"], ["-shared", "-fPIC", "-lm"]):
            self.tarnfc("hello.f90", "-o", "hello", *words)
            self.assertIn("libtarnlibc.so.0", self.needed("hello"))
            self.assertNotIn("libgfortran.so.5", self.needed("hello"))
        self.tarnfc("-c", "sub.f90")
        self.tarnfc("main.c", "sub.o", "-o", "mixed", "-lgfortran", "-lm", driver="tarncc")
        self.assertNotIn("libgfortran.so.5", self.needed("mixed"))

    def test_what_is_not_taken_over_stays_with_the_compiler(self):
        self.put(hello_f90="print *, reshape([1,2,3,4], [2,2], order=[2,1])\nend\n")
        self.tarnfc("hello.f90")
        self.assertEqual(self.output("a.out").split(), ["1", "3", "2", "4"])

    def test_compile_then_link(self):
        self.put(hello_f90=HELLO)
        self.tarnfc("-c", "hello.f90")
        self.tarnfc("-c", "hello.f90", "-o", "other name.o")
        self.tarnfc("hello.o", "-o", "one")
        self.tarnfc("other name.o", "-o", "two")
        self.assertEqual(self.output("one"), self.output("two"))

    def test_routines_of_the_library(self):
        self.put(caller_f90=CALLER, routines_f=ROUTINES, names_inc="  external again@ ! it's\n",
                 main_f90="program p\n  use caller\n  call run()\nend program\n")  # fmt: skip
        for extra in ([], ["-x", "f95"], ["-fopenmp"]):
            back = ["-x", "f77"] if extra == ["-x", "f95"] else []
            sources = ["caller.f90", "main.f90", *back, "routines.f"]
            self.tarnfc(*extra, *sources, "-o", "program")
            self.assertEqual(self.output("program"), "@'A@ x@y\nAGAIN@" + " " * 43 + "@  7\n")
        self.tarnfc("-g", "-c", "caller.f90", "routines.f")
        self.assertTrue({"show__", "again__"} <= self.symbols("caller.o"))
        self.assertTrue({"show__", "again__"} <= self.symbols("routines.o"))
        shown = os.fsdecode(self.run_in("readelf", "--debug-dump=info", "caller.o").stdout)
        self.assertRegex(shown, r"DW_AT_name.*: caller\.f90")
        self.assertRegex(shown, r"DW_AT_comp_dir.*" + re.escape(os.path.realpath(self.folder)))

    def test_all_sources_are_compiled_though_one_fails(self):
        self.put(bad_f90="! @\nx = 'a\nend\n", hello_f90=HELLO)
        for words in (["-c"], ["-o", "it"]):
            shown = text_of(self.tarnfc(*words, "bad.f90", "missing.f90", "hello.f90", status=1))
            self.assertIn("bad.f90:2", shown)
        self.assertIn("hello.o", os.listdir(self.folder))
        self.assertNotIn("it", os.listdir(self.folder))

    def test_messages_name_the_users_file_and_names(self):
        self.put(bad_f90="implicit none\ncall go@()\nx = go@ + 1\nend\n",
                 upper_F90="#define LONG 1\nimplicit none\ny@ = LONG\nend\n")  # fmt: skip
        message = text_of(self.tarnfc("-c", "bad.f90", status=1))
        self.assertIn("bad.f90:3:", message)
        self.assertIn("x = go@ + 1", message)
        self.assertNotIn("tarnfc-", message)
        message = text_of(self.tarnfc("-c", "upper.F90", status=1))
        self.assertIn("upper.F90:3:", message)
        self.assertIn("‘y@’", message)

    def test_modules_refuse_wrong_kinds(self):
        head = "use tarn\ninteger(2) handle, error\ninteger wide, n\ncharacter(9) text\n"
        for line, wrong in (("call openr@('x', wide, error)", "INTEGER(4) to INTEGER(2)"),
                            ("call readfa@(text, handle, error, error)", "INTEGER(2) to INTEGER(4)"),
                            ("call closef@(handle, n)", "INTEGER(4) to INTEGER(2)"),
                            ("n = curdir@()", "CHARACTER")):  # fmt: skip
            self.put(wrong_f90=head + line + "\nend\n")
            message = text_of(self.tarnfc("-c", "wrong.f90", status=1))
            self.assertIn(line, message)
            self.assertIn(wrong, message)

    def test_preprocessed_sources(self):
        self.put(main_F90='#include "names.h"\nNAME\n#ifdef SHOUT\ncall show@("A@")\n#endif\nend\n',
                 names_h="#define NAME external show@\n", routines_f=ROUTINES)  # fmt: skip
        self.tarnfc("-DSHOUT", "main.F90", "routines.f")
        self.assertEqual(self.output("a.out"), "@'A@ A@\n")

    def test_native_dialect(self):
        self.put(hello_f90=HELLO)
        self.tarnfc("--dialect=native", "-c", "hello.f90")
        symbols = self.symbols("hello.o")
        self.assertIn("tarn_native_st_write", symbols)
        self.assertIn("_gfortran_st_write_done", symbols)
        self.assertNotIn("_gfortran_st_write", symbols)
        self.tarnfc("--dialect=native", "-S", "hello.f90")
        with open(os.path.join(self.folder, "hello.s")) as file:
            self.assertIn("tarn_native_st_write", file.read())
        self.tarnfc("--dialect=native", "hello.f90", "-o", "program")
        self.assertEqual(self.output("program").split(), ["a@b", "42"])
        self.tarnfc("--dialect=gnu", "-c", "hello.f90")
        self.assertIn("_gfortran_st_write", self.symbols("hello.o"))

    def test_floating_point_rules(self):
        self.put(zero_f90="real :: x = 1\nread (*, *) x\nprint *, 1 / x\nend\n")
        for rules, quiet in (("system", True), ("native", False)):
            self.tarnfc(f"--float={rules}", "zero.f90", "-o", "zero")
            result = subprocess.run([os.path.join(self.folder, "zero")], input=b"0\n",
                                    capture_output=True, check=False)  # fmt: skip
            self.assertEqual(b"Infinity" in result.stdout, quiet)
            self.assertEqual(result.returncode == 0, quiet)

    def test_virtual_common(self):
        block = "real(8) a(2_8**32), b\n common /big/ a, b\n integer i(1000)\n common i\n"
        self.put(main_f90=f"{block} a(2_8**32) = 1.5\n i(1000) = 3\n call s\nend\n",
                 s_f90=f"subroutine s\n{block} print '(2f6.1,i3,z17.16,z9.8)', a(2_8**32), b, i(1000), &\n"
                       " transfer(a(7), 0_8), i(9)\nend\n")  # fmt: skip
        self.tarnfc("--virtual-common=big,//", "-c", "s.f90")
        for blocks, shown in (
            ("big,//", "   1.5   0.0  3 0000000000000000 00000000\n"),
            ("/BIG/:0x310000000000:undefined,//", "   1.5  -0.0  3 8080808080808080 00000000\n"),
        ):
            self.tarnfc("-O2", f"--virtual-common={blocks}", "main.f90", "s.o", "-o", "program")
            self.assertEqual(self.output("program"), shown)
        for blocks, expected in (
            ("nothing", "no object has a COMMON block /nothing/"),
            ("big:12", "NAME:ADDRESS"),
            ("big:0x310000000001", "multiple of 4096"),
            ("big:0x1000", "from 0x40000000"),
            ("", "is what goes here"),
        ):
            result = self.tarnfc(f"--virtual-common={blocks}", "main.f90", "s.o", status=1)
            self.assertIn(expected, text_of(result), blocks)
        result = self.tarnfc("--virtual-common=big", "-fPIC", "main.f90", status=1)
        self.assertIn("-fPIC", text_of(result))
        self.put(data_f90="block data\nreal c(999)\ncommon /big/ c\ndata c(1) /2.0/\nend\n")
        result = self.tarnfc("--virtual-common=big", "data.f90", "main.f90", "s.o", status=1)
        self.assertIn("/big/ has values at the start", text_of(result))

    def test_shared_object(self):
        self.put(part_f90="subroutine part()\n print *, 1\nend\n",
                 main_c="void part_(void);\nint main(void) { part_(); return 0; }\n")  # fmt: skip
        self.tarnfc("-shared", "-fPIC", "part.f90", "-o", "libpart.so")
        self.assertNotIn("main", self.symbols("libpart.so"))
        self.tarnfc("main.c", "-L.", "-lpart", "-Wl,-rpath,$ORIGIN", driver="tarncc")
        self.assertEqual(self.output("a.out").strip(), "1")

    def test_c_and_cplusplus(self):
        body = """
            void* block = tarn_malloc(100);
            int aligned = (size_t)block % 16 == 0;
            tarn_free(block);
            return aligned ? 0 : 1;"""
        source = f"#include <tarn/storage.h>\nint main(void) {{{body}\n}}\n"
        self.put(main_c=source, main_cpp=source, strict_c=source)
        self.tarnfc("main.c", driver="tarncc")
        self.output("a.out")
        self.tarnfc("-std=c99", "-pedantic", "-Werror", "strict.c", driver="tarncc")
        self.output("a.out")
        self.tarnfc("main.cpp", driver="tarnc++")
        self.output("a.out")
        self.tarnfc("-c", "main.c", "-o", "part.o", driver="tarncc")
        self.assertIn("tarn_malloc", self.symbols("part.o"))

    def test_response_file(self):
        self.put(hello_f90=HELLO, words_txt="-o 'the program'\nhello.f90\n")
        self.tarnfc("@words.txt")
        self.assertEqual(self.output("the program"), "a@b 42\n")

    def test_help_and_errors(self):
        self.assertIn("--dialect=native", text_of(self.tarnfc("--help")))
        for driver in ("tarnfc", "tarncc", "tarnc++"):
            self.assertTrue(text_of(self.tarnfc("--version", driver=driver)).startswith(driver))
        self.put(hello_f90=HELLO, wrong_f90="call go@(\nend\n")
        for arguments, expected in (
            (["--dialect=old", "hello.f90"], "--dialect=native"),
            (["-c", "hello.f90", "-o"], "wants a value"),
            (["-static", "hello.f90"], "shared library"),
            (["--dialect=native", "-flto", "hello.f90"], "-flto"),
            (["missing.f90"], "missing.f90"),
            (["wrong.f90"], "wrong.f90:1"),
            (["-c", "hello.f90", "wrong.f90", "-o", "x.o"], "multiple files"),
            ([], "no input files"),
        ):
            result = self.tarnfc(*arguments, status=1)
            self.assertIn(expected, text_of(result), arguments)
        result = self.tarnfc("hello.f90", status=1, TARN_FC="no-such-compiler")
        self.assertIn("TARN_FC", text_of(result))


if __name__ == "__main__":
    unittest.main()
