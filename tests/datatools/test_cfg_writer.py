"""The data generators' shared libconfig writer: the text it gives, and what --check catches."""

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "data" / "tools"))

from cfg_writer import data_file, description_command_line, run, spread_to, write_or_check  # noqa: E402


class Text(unittest.TestCase):
    def test_values_and_the_two_layouts(self):
        tables = {"NAMES": ["A", "B"], "FLAT": {"ONE": 1, "HALF": 0.5, "WHOLE": 2.0, "TINY": 1.5e-5},
                  "DEEP": {"ROW": {"X": 3}}}
        # Integral floats keep a point, small ones an exponent; a group of plain values is one line, a
        # group of groups a setting per line.
        self.assertEqual(data_file("C", "first\nsecond", tables),
                         '// first\n// second\nC = {\n  NAMES = ( "A", "B" );\n'
                         "  FLAT = { ONE = 1; HALF = 0.5; WHOLE = 2.0; TINY = 1.5e-05; };\n"
                         "  DEEP = {\n    ROW = { X = 3; };\n  };\n};\n")
        # Spread one level only, lists as arrays: the inner group and its list stay on one line.
        self.assertEqual(data_file("C", "", {"T": {"R": {"L": ["a"], "S": {"V": 1}}}}, spread_to({}), arrays=True),
                         'C = {\n  T = {\n    R = { L = ["a"]; S = { V = 1; }; };\n  };\n};\n')
        with self.assertRaises(TypeError):
            data_file("C", "", {"FLAG": True})


class Check(unittest.TestCase):
    def test_check_writes_nothing_and_fails_on_a_stale_or_missing_file(self):
        with tempfile.TemporaryDirectory() as tmp:
            good, stale, missing = Path(tmp, "good.cfg"), Path(tmp, "stale.cfg"), Path(tmp, "missing.cfg")
            self.assertEqual(write_or_check({good: "a\n", stale: "b\n"}, False, "gen.py"), 0)
            self.assertEqual(good.read_text(), "a\n")
            stale.write_text("old\n")
            errors = io.StringIO()
            with contextlib.redirect_stderr(errors):
                self.assertEqual(write_or_check({good: "a\n"}, True, "gen.py"), 0)
                self.assertEqual(write_or_check({good: "a\n", stale: "b\n", missing: "c\n"}, True, "gen.py"), 1)
            self.assertEqual(stale.read_text(), "old\n")
            self.assertFalse(missing.exists())
            self.assertNotIn("good.cfg", errors.getvalue())
            self.assertIn("stale.cfg is not what gen.py gives", errors.getvalue())
            self.assertIn("missing.cfg is not what gen.py gives", errors.getvalue())


class CommandLines(unittest.TestCase):
    def test_fixed_files_go_into_the_folder_unless_checked(self):
        with tempfile.TemporaryDirectory() as tmp:
            out = Path(tmp)
            with contextlib.redirect_stderr(io.StringIO()):
                self.assertEqual(run(out, {"A.cfg": "new\n"}, "gen.py", ["--check"]), 1)  # missing: stale
            self.assertFalse((out / "A.cfg").exists())
            self.assertEqual(run(out, {"A.cfg": "new\n"}, "gen.py", []), 0)
            self.assertEqual((out / "A.cfg").read_text(), "new\n")
            self.assertEqual(run(out, {"A.cfg": "new\n"}, "gen.py", ["--check"]), 0)

    def test_a_description_and_an_output_with_check_anywhere(self):
        with tempfile.TemporaryDirectory() as tmp:
            description = Path(tmp, "d.toml")
            description.write_text('[sheet]\nclass = "C"\n')
            self.assertEqual(description_command_line("usage", ["--check", str(description), "out"]),
                             ({"sheet": {"class": "C"}}, description, Path("out"), True))
            self.assertFalse(description_command_line("usage", [str(description), "out"])[3])
        for wrong in ([], ["d.toml"], ["d.toml", "out", "extra"]):
            errors = io.StringIO()
            with contextlib.redirect_stderr(errors):
                self.assertIsNone(description_command_line("usage: gen.py D OUT", wrong))
            self.assertEqual(errors.getvalue(), "usage: gen.py D OUT\n")

if __name__ == "__main__":
    unittest.main()
