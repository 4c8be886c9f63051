"""The manuals: both languages tell the same, the PDFs are what a reader opens, and their maker is
strict and repeatable. The environment's NIMBREL_MANUAL_FOLDER holds the PDFs of the build."""

import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
MANUALS = ROOT / "docs" / "manual"
STYLE = MANUALS / "manual.css"
TOOL = ROOT / "tools" / "make_pdf"
LANGUAGES = ("en", "de")
SOURCES = ("manual", "getting-started")

# Name, language: title and the pages that a reader expects.
PDFS = {
    ("Nimbrel for Mac Manual", "en"): ("Nimbrel Manual", range(6, 13)),
    ("Nimbrel for Mac Manual", "de"): ("Nimbrel-Handbuch", range(6, 13)),
    ("Getting Started", "en"): ("Getting Started", range(1, 3)),
    ("Getting Started", "de"): ("Erste Schritte", range(1, 3)),
}


def text_of(source, language):
    return (MANUALS / language / f"{source}.md").read_text(encoding="utf-8")


def pictures(text):
    return re.findall(r"!\[([^\]]*)\]\(([^)]*)\)", text)


def shape(text):
    """A line for each block that both languages have, without its words."""
    kinds = [(r"#+ ", None), (r"!\[", "picture"), (r"\d+\. ", "step"), (r"- ", "item"),
             (r"\|", "row"), (r":   ", "meaning"), (r"```", "code"), (r"> \*\*", "warning"),
             (r"\[TOC\]", "contents"), (r"<", "frame")]
    found = []
    for line in text.splitlines():
        for pattern, kind in kinds:
            match = re.match(pattern, line)
            if match:
                found.append(kind or match.group().strip())
                break
    return found


def names_in(text):
    """Files, commands and keys in the running text; what stands in blocks may be translated."""
    running = re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL)
    return set(re.findall(r"`([^`\n]+)`", running)) - {"Ctrl", "Strg"}


def pdfinfo(path):
    output = subprocess.run(["pdfinfo", str(path)], stdout=subprocess.PIPE, check=True,
                            env={**os.environ, "LC_ALL": "C", "TZ": "UTC"}, timeout=60).stdout.decode()
    return dict(re.findall(r"^([^:]+):\s*(.*)$", output, re.MULTILINE))


class SourcesTest(unittest.TestCase):
    def test_both_languages_have_the_same_shape(self):
        for source in SOURCES:
            english, german = (shape(text_of(source, language)) for language in LANGUAGES)
            self.assertGreater(english.count("##"), 3)
            self.assertEqual(english, german, source)

    def test_every_picture_is_there_has_a_caption_and_speaks_the_language(self):
        for language in LANGUAGES:
            found = pictures(text_of("manual", language))
            self.assertEqual(len(found), 8, language)
            for caption, path in found:
                self.assertTrue(caption, path)
                self.assertTrue(path.endswith(f"-{language}.png"), path)
                self.assertTrue((MANUALS / language / path).resolve().is_file(), path)

    def test_both_languages_show_the_same_pictures(self):
        english, german = ([path.rpartition("-")[0] for _, path in pictures(text_of("manual", lang))]
                           for lang in LANGUAGES)
        self.assertEqual(english, german)

    def test_files_and_commands_are_the_same_in_both(self):
        for source in SOURCES:
            english, german = (names_in(text_of(source, language)) for language in LANGUAGES)
            self.assertIn(".encfs6.xml", english)
            self.assertEqual(english, german, source)


class PdfTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(os.environ["NIMBREL_MANUAL_FOLDER"])

    def test_every_pdf_opens_with_its_title_its_pages_and_its_language(self):
        for (name, language), (title, pages) in PDFS.items():
            path = self.folder / language / f"{name}.pdf"
            with self.subTest(path=path):
                info = pdfinfo(path)
                self.assertEqual(info["Title"], title)
                self.assertIn(int(info["Pages"]), pages)
                self.assertIn("A4", info["Page size"])
                self.assertIn(f"/Lang ({language})".encode(), path.read_bytes())

    def test_the_pictures_are_in_it(self):
        for language in LANGUAGES:
            path = self.folder / language / "Nimbrel for Mac Manual.pdf"
            lines = subprocess.run(["pdfimages", "-list", str(path)], stdout=subprocess.PIPE,
                                   check=True, timeout=60).stdout.decode().splitlines()
            self.assertEqual(sum(line.split()[2] == "image" for line in lines[2:]), 8,
                             language)


class MakerTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.source = self.folder / "a page.md"
        self.pdf = self.folder / "out" / "a page.pdf"

    def make(self, text, *more, **environment):
        self.source.write_text(text, encoding="utf-8")
        return self.run_tool(self.source, "en", self.pdf, *more, **environment)

    def run_tool(self, source, language, pdf, *more, **environment):
        return subprocess.run([str(TOOL), str(source), str(STYLE), language, str(pdf), *more],
                              stderr=subprocess.PIPE, text=True, timeout=120, umask=0o077,
                              env={"PATH": os.environ["PATH"], **environment})

    def assert_refused(self, result, reason):
        self.assertNotEqual(result.returncode, 0)
        self.assertIn(reason, result.stderr)
        self.assertFalse(self.pdf.exists())

    def test_the_same_source_gives_the_same_bytes(self):
        made = []
        for number, seed in enumerate(("1", "2")):
            pdf = self.folder / str(number) / "it.pdf"
            source = MANUALS / "de" / "manual.md"
            result = self.run_tool(source, "de", pdf, PYTHONHASHSEED=seed)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            made.append(pdf.read_bytes())
        self.assertEqual(made[0], made[1])

    def test_the_date_is_that_of_the_environment(self):
        result = self.make("# Title\n", SOURCE_DATE_EPOCH="86400")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertTrue(pdfinfo(self.pdf)["CreationDate"].startswith("Fri Jan  2 "))

    def test_what_was_read_is_told(self):
        (self.folder / "dot.svg").write_text(
            '<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"><path d="M0 0h9"/></svg>')
        rule = self.folder / "rule.d"
        result = self.make("# Title\n\n![A dot](dot.svg)\n", str(rule))
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        target, _, read = rule.read_text().partition(": ")
        self.assertEqual(target, str(self.pdf).replace(" ", "\\ "))
        for path in (self.folder / "dot.svg", STYLE, str(self.source).replace(" ", "\\ ")):
            self.assertIn(str(path), read)

    def test_a_missing_picture_is_an_error(self):
        self.assert_refused(self.make("# Title\n\n![It](nowhere.png)\n"), "nowhere.png")

    def test_nothing_is_fetched_from_a_network(self):
        self.assert_refused(self.make("# Title\n\n![It](http://127.0.0.1:9/x.png)\n"),
                            "http://127.0.0.1:9/x.png")

    def test_a_link_to_nowhere_is_an_error(self):
        self.assert_refused(self.make("# Title\n\n[It](#nowhere)\n"), "#nowhere")

    def test_a_page_without_a_title_is_an_error(self):
        self.assert_refused(self.make("Words.\n"), "no title")


if __name__ == "__main__":
    unittest.main()
