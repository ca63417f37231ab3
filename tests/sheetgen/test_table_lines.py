"""Where the keys of a table are written: the lines a refusal names."""

import sys
import tomllib
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

from table_lines import key_lines, line_of  # noqa: E402

# Look-alikes of headers and keys inside strings, comments and arrays must not move a key's line.
TRICKY = '''\
# [sheet] in a comment
[sheet]
description = """two lines, one that looks like
[design]
region = "a key" """
"quoted.key" = 'a [literal] = string'
dotted.part = 1
[cells.float]
inputs = [
    "A",  # a comment = inside [an array]
    'B',
]
[[families]]
name = "First"
[[families]]
name = "Second"
cells = { "{}_X" = 1, y = { z = "}" } }
[families.extra]
note = "a sub-table of the second family"
[design]
escaped = "a \\" quote, then # no comment"
region = "gt"
'''


def walk(value, path=()):
    """Every key path of a parsed table, arrays' elements by index."""
    items = value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ()
    for key, item in items:
        yield path + (key,)
        yield from walk(item, path + (key,))


class KeyLines(unittest.TestCase):
    def test_lines_of_every_kind_of_key(self):
        lines = key_lines(TRICKY)
        expected = {  # counted by hand in TRICKY above
            ("sheet",): 2, ("sheet", "description"): 3, ("sheet", "quoted.key"): 6, ("sheet", "dotted", "part"): 7,
            ("cells",): 8, ("cells", "float", "inputs"): 9, ("cells", "float", "inputs", 1): 11,
            ("families", 0, "name"): 14, ("families", 1): 15, ("families", 1, "cells", "{}_X"): 17,
            ("families", 1, "cells", "y", "z"): 17, ("families", 1, "extra", "note"): 19,
            ("design",): 20, ("design", "region"): 22,
        }
        self.assertEqual({path: lines.get(path) for path in expected}, expected)
        # A key the table lacks is placed at its section; a section it lacks has no line.
        self.assertEqual(line_of(lines, ("design", "feeds", "FED")), 20)
        self.assertEqual(line_of(lines, ("families", 1, "members")), 15)
        self.assertIsNone(line_of(lines, ("rails", "voltage")))

    def test_every_key_of_the_shipped_tables_is_found_on_its_line(self):
        tables = [*ROOT.glob("models/*/*.toml"), *ROOT.glob("framework/*.toml"), *ROOT.glob("tests/*/*.toml")]
        self.assertGreater(len(tables), 30)
        for table in tables:
            text = table.read_text()
            source, lines = text.split("\n"), key_lines(text)
            for path in walk(tomllib.loads(text)):
                with self.subTest(table=table.name, path=path):
                    self.assertIn(path, lines)
                    if isinstance(path[-1], str):
                        self.assertIn(path[-1], source[lines[path] - 1])


if __name__ == "__main__":
    unittest.main()
