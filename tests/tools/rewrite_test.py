"""Names with `@` in sources: what is rewritten and what is left alone.

usage: rewrite_test.py FOLDER-OF-THE-DRIVER-MODULES
"""

import os
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop(1))
sys.dont_write_bytecode = True
from rewrite import Form, mentions_names, rewrite  # noqa: E402

FREE = [
    ("call winio@('%ca[a@b]&')", "call winio_('%ca[a@b]&')"),
    ("i=f@(g@(1))+h @(2)", "i=f_(g_(1))+h @(2)"),  # no blanks within a free form name
    ("s = \"it's @ \" // x@()", "s = \"it's @ \" // x_()"),
    ("s = 'don''t @ me' // x@()", "s = 'don''t @ me' // x_()"),
    ("x = 1 ! c@d 'open", "x = 1 ! c@d 'open"),
    ("write(*,5h@h'x@) y@", "write(*,5h@h'x@) y_"),
    ("integer*4 h@", "integer*4 h_"),
    ("x5h@ = 1", "x5h_ = 1"),
    ("@ = '@'", "@ = '@'"),
    ("s = 'goes &\n ! a comment's @\n\n  & on@' // x@()", "s = 'goes &\n ! a comment's @\n\n  & on@' // x_()"),
    ("s = 'goes &\non@' // x@()", "s = 'goes &\non@' // x_()"),
    ("s = 'never closed\nx = y@", "s = 'never closed\nx = y_"),
    ("x = y@ & ! isn't@\n + z@", "x = y_ & ! isn't@\n + z_"),
    ("call op&\n   &en@()", "call op&\n   &en_()"),
    ("call open&\n   &@()", "call open&\n   &_()"),
    ("call a@\r\ncall b@\r\n", "call a_\r\ncall b_\r\n"),
    ("s='\x85\xa0' ; call b@ ! \xe9", "s='\x85\xa0' ; call b_ ! \xe9"),
    ("# 3 \"a@b.h\"\ncall c@", "# 3 \"a@b.h\"\ncall c_"),
    ("!$ call a@\n!$omp single copyprivate(b@)", "!$ call a@\n!$omp single copyprivate(b@)"),
    ("format(1x,3h@',a) ; call b@", "format(1x,3h@',a) ; call b_"),
]

FIXED = [
    ("      CALL WINIO@('A@B')", "      CALL WINIO_('A@B')"),
    ("C     A@ DON'T\n*     B@\n!     C@\n   !  D@\nD     E@\n      F@=1",
     "C     A@ DON'T\n*     B@\n!     C@\n   !  D@\nD     E@\n      F_=1"),
    ("      CALL OPE\n     1N@(X)", "      CALL OPE\n     1N_(X)"),
    ("      CALL OPEN @ (X)", "      CALL OPEN _ (X)"),
    ("      S='A@B\nC IT'S\n     &C@D'//E@()", "      S='A@B\nC IT'S\n     &C@D'//E_()"),
    ("      S='NEVER CLOSED\n      CALL A@", "      S='NEVER CLOSED\n      CALL A_"),
    (" 100  FORMAT(4H@'A@,I4)\n      B@=1", " 100  FORMAT(4H@'A@,I4)\n      B_=1"),
    ("      X" + " " * 65 + "IT'S@\n      CALL A@", "      X" + " " * 65 + "IT'S@\n      CALL A_"),
    ("      DATA X/57HAB\n     1@,A@/", "      DATA X/57HAB\n     1@,A_/"),
    ("\tCALL A@\n\t1'@')\n\tCALL B@ ! C@", "\tCALL A_\n\t1'@')\n\tCALL B_ ! C@"),
    ("     !A@", "     !A_"),  # column 6: a continuation
    ("10    A@=1", "10    A_=1"),
]  # fmt: skip


class Rewriting(unittest.TestCase):
    def check(self, table, **options):
        for text, expected in table:
            with self.subTest(text=text):
                self.assertEqual(rewrite(text, Form(**options), "x", [])[0], expected)

    def test_free_form(self):
        self.check(FREE)

    def test_fixed_form(self):
        self.check(FIXED, fixed=True)

    def test_options(self):
        self.check([("!$ call a@\n!$omp flush(b@)\n! c@", "!$ call a_\n!$omp flush(b_)\n! c@")], openmp=True)
        self.check([("C$    CALL A@\n!$   1B@\nC     C@", "C$    CALL A_\n!$   1B_\nC     C@")],
                   fixed=True, openmp=True)  # fmt: skip
        self.check([("D     CALL A@", "D     CALL A_")], fixed=True, d_lines=True)
        self.check([("s='\\'@' // a@", "s='\\'@' // a_")], backslash=True)
        wide = "      X" + " " * 70 + "=A@"
        self.check([(wide, wide)], fixed=True)
        self.check([(wide, wide.replace("@", "_"))], fixed=True, line_length=132)
        self.check([(wide, wide.replace("@", "_"))], fixed=True, line_length=0)

    def test_names(self):
        self.assertEqual(rewrite("Call Open_To@(b@,'c@')", Form(), "x", [])[1], {"open_to", "b"})
        self.assertEqual(rewrite("      CALL OPEN@", Form(fixed=True), "x", [])[1], {"open"})

    def test_included_files(self):
        with tempfile.TemporaryDirectory() as folder:
            def put(name, text):
                os.makedirs(os.path.dirname(os.path.join(folder, name)), exist_ok=True)
                with open(os.path.join(folder, name), "w", encoding="latin-1") as file:
                    file.write(text)
                return os.path.join(folder, name)

            plain = put("plain.inc", "integer x\n")
            inner = put("deep/inner.inc", "external a@")
            outer = put("outer.inc", "include 'inner.inc' ! here\n")
            loop = put("loop.inc", "include 'loop.inc'\n")
            source = put("main.f90", "include 'plain.inc'\n  INCLUDE \"outer.inc\"\ncall a@\n")
            folders = [os.path.dirname(inner)]
            self.assertTrue(mentions_names(outer, folders))
            self.assertFalse(mentions_names(outer, []))
            self.assertFalse(mentions_names(plain, folders))
            self.assertFalse(mentions_names(loop, folders))
            with open(source, encoding="latin-1") as file:
                text, names = rewrite(file.read(), Form(), source, folders)
            self.assertEqual(text,
                             "include 'plain.inc'\n"
                             f'# 1 "{outer}" 1\n# 1 "{inner}" 1\nexternal a_\n# 2 "{outer}" 2\n'
                             f'# 3 "{source}" 2\ncall a_\n')  # fmt: skip
            self.assertEqual(names, {"a"})


if __name__ == "__main__":
    unittest.main()
