"""The generator's modules: no import cycle, and nothing one table's load leaves for the next."""

import ast
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

from braces import expand  # noqa: E402
from sheet import load  # noqa: E402


def imports(module: Path, modules: set[str]) -> set[str]:
    """The generator modules that `module` imports anywhere in its text, inside functions too."""
    found = set()
    for node in ast.walk(ast.parse(module.read_text())):
        if isinstance(node, ast.Import):
            found |= {alias.name for alias in node.names}
        elif isinstance(node, ast.ImportFrom) and node.module:
            found.add(node.module)
    return found & modules


class Modules(unittest.TestCase):
    def test_no_module_imports_one_that_imports_it_back(self):
        files = {path.stem: path for path in (ROOT / "sheetgen").glob("*.py")}
        graph = {name: imports(path, set(files)) for name, path in files.items()}

        def reaches(start: str, goal: str, seen: set) -> bool:
            return any(n == goal or (n not in seen and reaches(n, goal, seen | {n})) for n in graph[start])

        self.assertEqual([name for name in graph if reaches(name, name, set())], [])

    def test_a_table_s_lists_stay_with_that_table(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "Listed.toml"
            path.write_text('[sheet]\ndescription = "lists"\n[lists]\nRAILS = ["VCCINT", "VCCAUX"]\n'
                            '[cells.float]\noutputs = ["{RAILS}_POWER"]\n[descriptions]\n"*" = "x"\n')
            self.assertEqual(sorted(load(path, Path(folder)).by_name), ["VCCAUX_POWER", "VCCINT_POWER"])
        # After the load, a brace is a plain list of choices again: RAILS is no list of anything.
        self.assertEqual(expand("{RAILS}_POWER"), ["RAILS_POWER"])


if __name__ == "__main__":
    unittest.main()
