"""Feed selectors are parsed once, by the generator, into the terms the design engine matches."""

import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "sheetgen"))

import design_decl  # noqa: E402


class FeedSelectors(unittest.TestCase):
    def test_terms_keep_their_order_negation_and_names(self):
        self.assertEqual(design_decl.parse_selector("rail:VCCINT,VCCAUX  !region:aie tag:ip"),
                         [("rail", False, ["VCCINT", "VCCAUX"]), ("region", True, ["aie"]), ("tag", False, ["ip"])])

    def test_each_feed_is_emitted_as_its_terms_in_feed_order(self):
        emitted = design_decl._cpp_selectors([("A", "region:gt !tag:ip"), ("B", "rail:VCCPMC,VCCAUXPMC")])
        self.assertEqual(emitted,
                         '{{{prsm::SelectorTerm::Key::Region, false, {"gt"}}, '
                         '{prsm::SelectorTerm::Key::Tag, true, {"ip"}}}, '
                         '{{prsm::SelectorTerm::Key::Rail, false, {"VCCPMC", "VCCAUXPMC"}}}}')


if __name__ == "__main__":
    unittest.main()
