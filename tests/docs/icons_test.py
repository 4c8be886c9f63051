"""The icons are small, complete in themselves, drawn with what Qt's SVG knows, and in the program."""

import re
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ICONS = Path(__file__).resolve().parents[2] / "resources" / "icons"
SVG = "{http://www.w3.org/2000/svg}"
KNOWN = {SVG + name for name in ("svg", "defs", "linearGradient", "stop", "path", "rect", "circle")}
TINTED = ("NSActionTemplate", "caps-lock", "hide-password", "show-password")


class IconsTest(unittest.TestCase):
    def setUp(self):
        self.files = sorted(ICONS.glob("*.svg"))
        self.assertGreater(len(self.files), 10)

    def test_the_resource_list_names_every_icon(self):
        resources = ElementTree.parse(ICONS / "icons.qrc").getroot().find("qresource")
        self.assertEqual(resources.get("prefix"), "/icons")
        self.assertEqual([entry.text for entry in resources], sorted(p.name for p in self.files))

    def test_every_icon_is_small_square_and_plain(self):
        for path in self.files:
            with self.subTest(path.name):
                self.assertLess(path.stat().st_size, 4096)
                root = ElementTree.parse(path).getroot()
                self.assertEqual(*root.get("viewBox").split()[2:])
                self.assertEqual(root.get("width"), root.get("height"))
                for element in root.iter():
                    self.assertIn(element.tag, KNOWN)
                    self.assertFalse({"class", "style", "filter"} & set(element.keys()))
                    self.assertFalse([key for key in element.keys() if key.endswith("href")])

    def test_every_gradient_is_there(self):
        for path in self.files:
            text = path.read_text(encoding="utf-8")
            for name in re.findall(r"url\(#([^)]*)\)", text):
                self.assertIn(f'id="{name}"', text, path.name)

    def test_icons_that_take_the_text_colour_have_one_colour(self):
        for name in TINTED:
            text = (ICONS / f"{name}.svg").read_text(encoding="utf-8")
            self.assertEqual(set(re.findall(r"#[0-9a-f]{6}", text)), {"#000000"}, name)


if __name__ == "__main__":
    unittest.main()
