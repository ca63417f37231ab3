"""The regions, declared once in design/regions.toml, as the generator reads and emits them."""

import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

import design_decl  # noqa: E402
import regions  # noqa: E402


def load_text(text: str):
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "regions.toml"
        path.write_text(text)
        return regions.load(path)


class Regions(unittest.TestCase):
    def test_the_declared_regions_are_what_sheets_are_checked_against(self):
        declared = regions.load()
        self.assertEqual([name for name, _ in declared][:2], ["logic", "io"])  # report order
        self.assertEqual(design_decl.REGIONS, tuple(name for name, _ in declared))

    def test_the_engine_gets_each_region_with_its_title_in_order(self):
        text = regions.header((("logic", "programmable logic"), ("io", "I/O")))
        self.assertIn('    {"logic", "programmable logic"},\n    {"io", "I/O"},\n', text)

    def test_refusals(self):
        refused = {
            '[regions]\nLogic = "x"\n': "is not a lower-case word",
            '[regions]\nlogic = ""\n': "plain, non-empty text",
            '[regions]\nlogic = "a \\"quoted\\" title"\n': "plain, non-empty text",
            "[regions]\n": "declares no region",
        }
        for text, message in refused.items():
            with self.subTest(text), self.assertRaises(regions.RegionsError) as caught:
                load_text(text)
            self.assertIn(message, str(caught.exception))


if __name__ == "__main__":
    unittest.main()
