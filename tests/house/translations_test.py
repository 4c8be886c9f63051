"""That every text of the application has its German form, and that the form fits the text. The
checks are functions over the messages of a file; each is shown something that it has to refuse."""

import collections
import re
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path
from typing import NamedTuple

PROJECT = Path(__file__).resolve().parents[2]
GERMAN = PROJECT / "resources/translations/nimbrel_de.ts"
TOOL = PROJECT / "tools/update-translations"
MANUALS = PROJECT / "docs/manual"

# What the manual quotes of the windows, so that a reader finds it there again.
QUOTED = (
    "Welcome to Nimbrel",
    "Create a new Nimbrel Folder",
    "Create a password",
    "Modify advanced options",
    "Congratulations!",
    "Other…",
    "OK",
    "Very Weak",
    "Very Strong",
    "The Nimbrel Folder does not exist.",
    "The configuration file does not exist.",
    "This is not a valid Nimbrel Folder.",
    "Wrong folder configuration file!",
    "The mount point %@ is already in use.",
    '"%@" could not be mounted.',
    '"%@" could not be unmounted.',
)


class Message(NamedTuple):
    source: str
    translation: str = ""
    state: str = ""  # "unfinished", "vanished", "obsolete"; empty is done
    context: str = "nimbrel"


def text_of(element):
    """A control character stands as an element of its own."""
    text = element.text or ""
    for child in element:
        value = child.get("value")
        text += chr(int(value[1:], 16) if value.startswith("x") else int(value))
        text += child.tail or ""
    return text


def messages_of(path):
    messages = []
    for context in ElementTree.parse(path).getroot().iter("context"):
        for message in context.iter("message"):
            translation = message.find("translation")
            messages.append(Message(text_of(message.find("source")), text_of(translation),
                                    translation.get("type", ""), context.findtext("name")))
    return messages


def updated(path, sources):
    """The messages of a copy of the file, once our tool has been over it."""
    with tempfile.TemporaryDirectory() as folder:
        tool = Path(folder, "tools", TOOL.name)
        copy = Path(folder, "resources/translations", path.name)
        for target, origin in ((tool, TOOL), (copy, path)):
            target.parent.mkdir(parents=True)
            shutil.copy(origin, target)
        Path(folder, "src").symlink_to(sources)
        subprocess.run([tool], check=True, capture_output=True)
        return messages_of(copy)


def refused(message, reason):
    return f"{message.source!r}: {reason}: {message.translation!r}"


def missing(messages, wanted):
    """Texts of the sources that the file doesn't have, and the other way round."""
    have, want = ({(one.context, one.source) for one in some} for some in (messages, wanted))
    return ([f"{text!r}: missing" for _, text in sorted(want - have)] +
            [f"{text!r}: nobody uses it" for _, text in sorted(have - want)])


def unfinished(messages):
    return [refused(one, one.state or "empty") for one in messages
            if one.state or not one.translation.strip()]


def foreign_contexts(messages):
    return [f"{one.source!r}: not from texts::tr, but from {one.context}" for one in messages
            if one.context != "nimbrel"]


def directives(text):
    """Unnumbered ones take arguments in their order, numbered and named ones in any."""
    found = re.findall(r"%(?:@|ld|d|s|n|%|L?\d+)|\{\w+\}", text)
    free = [one for one in found if one[-1].isdigit() or one[-1] == "}"]
    return [one for one in found if one not in free], collections.Counter(free)


def mnemonics(text):
    return re.findall(r"&(\w)", text.replace("&&", ""))


def edges(text):
    """The blanks around a text."""
    return text[:len(text) - len(text.lstrip())], text[len(text.rstrip()):]


def closing(text):
    last = text.rstrip()[-1:]
    return last if last in "…:!?." else ""


def line_ends(text):
    return re.findall(r"\r\n|\r|\n", text)


def different(same, what):
    def check(messages):
        return [refused(one, what) for one in messages
                if same(one.source) != same(one.translation)]
    return check


def german_typography(messages):
    complaints = []
    for one in messages:
        if re.search("[„“”‚‘»«\"]", re.sub("„[^„“]*“", "", one.translation)):
            complaints.append(refused(one, "quotation marks are „ and “"))
        if re.search(r"\.\.\.|\S…|'", one.translation):
            complaints.append(refused(one, "“ …” after a word, and no typewriter's signs"))
    return complaints


CHECKS = {
    "unfinished": unfinished,
    "contexts": foreign_contexts,
    "placeholders": different(directives, "other placeholders"),
    "mnemonics": different(lambda text: len(mnemonics(text)), "a mnemonic too many or missing"),
    "blanks": different(edges, "other blanks around it"),
    "closing punctuation": different(closing, "ends in another sign"),
    "line breaks": different(line_ends, "other line breaks"),
    "typography": german_typography,
}


def ambiguous_mnemonics(texts):
    """Among the texts of one page."""
    letters = collections.defaultdict(list)
    for text in texts:
        for letter in mnemonics(text):
            letters[letter.lower()].append(text)
    return [f"{letter}: {texts}" for letter, texts in letters.items() if len(texts) > 1]


def unmarked_keys(source):
    """Keys that come from a variable, in a source that marks none for the tools."""
    if 'QT_TRANSLATE_NOOP("nimbrel",' in source:
        return []
    return re.findall(r'\btexts::tr\(\s*[^"\s][^)]*', source)


def literal_keys(source):
    literals = re.findall(r'\btexts::tr\(((?:\s*"[^"\\]*")+)\s*\)', source)
    return ["".join(re.findall('"([^"]*)"', literal)) for literal in literals]


def sources():
    return [path for path in sorted((PROJECT / "src").rglob("*"))
            if path.suffix in (".cpp", ".h")]


def unquoted(manual, texts, quotes):
    """Texts that the manual doesn't quote letter for letter; “…” stands for a name."""
    page = " ".join(manual.split())
    shown = [re.sub('["„]?%@["“]?', "…", text) for text in texts]
    return [text for text in shown if quotes[0] + text + quotes[1] not in page]


class GermanTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.messages = messages_of(GERMAN)
        cls.german = {one.source: one.translation for one in cls.messages}

    def test_every_text_of_the_sources_is_there_and_no_other(self):
        self.assertEqual(missing(self.messages, updated(GERMAN, PROJECT / "src")), [])

    def test_every_translation_fits_its_text(self):
        self.assertGreater(len(self.messages), 100)
        for name, check in CHECKS.items():
            with self.subTest(name):
                self.assertEqual(check(self.messages), [])

    def test_no_text_is_there_twice(self):
        self.assertEqual(len(self.german), len(self.messages))

    def test_every_key_is_visible_to_the_tools(self):
        for path in sources():
            source = path.read_text(encoding="utf-8")
            # The core's own text is marked there, where no tr() is.
            source = source.replace("texts::tr(std::string(informationText()).c_str())", "")
            with self.subTest(path.name):
                self.assertEqual(unmarked_keys(source), [])

    def test_the_cores_text_is_marked_and_translated(self):
        core = (PROJECT / "src/config/InformationFile.cpp").read_text(encoding="utf-8")
        self.assertIn('NIMBREL_TEXT(\n        "nimbrel",', core)
        self.assertTrue(any(key.startswith("This is an encrypted folder") for key in self.german))

    def test_no_letter_of_a_page_is_taken_twice(self):
        pages = sorted((PROJECT / "src/assistants/views").glob("*View.cpp"))
        self.assertGreaterEqual(len(pages), 7)
        for path in pages:
            keys = literal_keys(path.read_text(encoding="utf-8"))
            german = [self.german.get(key, "") for key in keys]  # another test finds the gaps
            for language, texts in (("en", keys), ("de", german)):
                with self.subTest(path.name, language=language):
                    self.assertEqual(ambiguous_mnemonics(texts), [])

    def test_the_manuals_quote_what_the_windows_say(self):
        for language, texts, quotes in (("en", QUOTED, "“”"),
                                        ("de", [self.german[key] for key in QUOTED], "„“")):
            manual = (MANUALS / language / "manual.md").read_text(encoding="utf-8")
            with self.subTest(language):
                self.assertEqual(unquoted(manual, texts, quotes), [])

    def test_the_manual_has_the_name_of_its_file(self):
        manual = (MANUALS / "de/manual.md").read_text(encoding="utf-8")
        self.assertEqual(manual.splitlines()[0], "# " + self.german["Nimbrel for Mac Manual"])


class RefusalTest(unittest.TestCase):
    """What the checks are there to find, on texts and files made here."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.sources = self.folder / "src"
        (self.sources / "app").mkdir(parents=True)
        shutil.copy(PROJECT / "src/app/Texts.h", self.sources / "app")
        self.write('texts::tr("Next");', 'texts::tr("Close");')

    def write(self, *statements):
        (self.sources / "Page.cpp").write_text(
            '#include "app/Texts.h"\nvoid nimbrel::show()\n{\n' + "\n".join(statements) + "\n}\n",
            encoding="utf-8")

    def file(self, *messages):
        text = "".join(
            f"<message><source>{source}</source><translation>{translation}</translation></message>"
            for source, translation in messages)
        path = self.folder / "nimbrel_de.ts"
        path.write_text('<!DOCTYPE TS><TS version="2.1" language="de_DE"><context>'
                        f"<name>nimbrel</name>{text}</context></TS>", encoding="utf-8")
        return path

    def missing_in(self, *messages):
        path = self.file(*messages)
        return missing(messages_of(path), updated(path, self.sources))

    def assert_refused_by(self, name, *message):
        for other, check in CHECKS.items():
            with self.subTest(other, message=message):
                self.assertEqual(len(check([Message(*message)])), 1 if other == name else 0)

    def test_a_whole_file_is_fine(self):
        self.assertEqual(self.missing_in(("Next", "Weiter"), ("Close", "Schließen")), [])

    def test_a_text_that_was_taken_out_is_missed(self):
        self.assertEqual(self.missing_in(("Next", "Weiter")), ["'Close': missing"])

    def test_a_text_that_nobody_uses_any_more_is_found(self):
        self.assertEqual(
            self.missing_in(("Next", "Weiter"), ("Close", "Schließen"), ("Gone", "Fort")),
            ["'Gone': nobody uses it"])

    def test_a_real_text_that_was_taken_out_is_missed(self):
        messages = messages_of(GERMAN)
        for number, message in enumerate(messages):
            rest = messages[:number] + messages[number + 1:]
            self.assertEqual(missing(rest, messages), [f"{message.source!r}: missing"])

    def test_control_characters_are_read(self):
        path = self.file(('a<byte value="xd"/>\nb', 'c<byte value="13"/>\n'))
        self.assertEqual(messages_of(path), [Message("a\r\nb", "c\r\n")])

    def test_what_is_not_done_is_refused(self):
        for state in ("unfinished", "vanished", "obsolete"):
            self.assert_refused_by("unfinished", "Next", "Weiter", state)
        self.assertEqual(len(unfinished([Message("Next"), Message("Next", " ")])), 2)

    def test_a_text_of_another_class_is_refused(self):
        self.assert_refused_by("contexts", "Next", "Weiter", "", "nimbrel::Page")

    def test_lost_or_swapped_placeholders_are_refused(self):
        for source, translation in (("%@ is", "ist"), ("%@, %d", "%d, %@"), ("a %1", "a %2"),
                                    ("%ld of %@", "%d von %@"), ("50%%", "50"), ("is", "%@ ist")):
            self.assert_refused_by("placeholders", source, translation)

    def test_numbered_placeholders_may_change_places(self):
        self.assertEqual(CHECKS["placeholders"]([Message("%1 of %2", "%2: %1")]), [])
        self.assertEqual(CHECKS["placeholders"]([Message("{a} of {b}", "{b}: {a}")]), [])
        self.assert_refused_by("placeholders", "{who} has it", "{wer} hat es")

    def test_a_mnemonic_too_many_or_too_few_is_refused(self):
        self.assert_refused_by("mnemonics", "&Name", "Name")
        self.assert_refused_by("mnemonics", "Next", "&Weiter")
        self.assert_refused_by("mnemonics", "You && me", "Sie &und ich")

    def test_other_blanks_around_a_text_are_refused(self):
        self.assert_refused_by("blanks", "Next ", "Weiter")
        self.assert_refused_by("blanks", "Next", " Weiter")

    def test_another_closing_sign_is_refused(self):
        for source, translation in (("Name:", "Name"), ("Done", "Fertig."), ("Why?", "Warum!"),
                                    ("Other…", "Anderer"), ("Name:", "Name …")):
            self.assert_refused_by("closing punctuation", source, translation)

    def test_other_line_breaks_are_refused(self):
        self.assert_refused_by("line breaks", "a\n\nb", "a\nb")
        self.assert_refused_by("line breaks", "a\r\nb", "a\nb")

    def test_foreign_typography_is_refused(self):
        for translation in ('"Weiter"', "“Weiter”", "„Weiter”", "„Weiter", "»Weiter«", "Weiter…",
                            "geht's"):
            complaints = german_typography([Message("Next", translation)])
            self.assertEqual(len(complaints), 1, translation)

    def test_german_quotation_marks_and_ellipses_are_fine(self):
        self.assertEqual(german_typography([Message("x", "„a“ und „b“ …")]), [])

    def test_one_letter_for_two_texts_is_refused(self):
        self.assertEqual(ambiguous_mnemonics(["&Name", "&Ort"]), [])
        self.assertEqual(len(ambiguous_mnemonics(["&Name", "A&nderer"])), 1)

    def test_a_key_that_no_tool_sees_is_refused(self):
        call = "setText(texts::tr(\n    rating.label));"
        self.assertEqual(unmarked_keys(call), ["texts::tr(\n    rating.label"])
        self.assertEqual(unmarked_keys('QT_TRANSLATE_NOOP("nimbrel", "Weak") ' + call), [])
        self.assertEqual(unmarked_keys('texts::tr("Next"), texts::tr(\n    "Close")'), [])

    def test_keys_in_several_lines_are_whole(self):
        self.assertEqual(literal_keys('texts::tr("&Next"), texts::tr("a "\n    "&b"), tr("c")'),
                         ["&Next", "a &b"])

    def test_a_manual_that_says_it_otherwise_is_refused(self):
        manual = "the page “Create a\npassword” and\n“… could not be mounted.”"
        self.assertEqual(
            unquoted(manual, ["Create a password", '"%@" could not be mounted.'], "“”"), [])
        self.assertEqual(unquoted(manual, ["Create a Password", "Create a"], "“”"),
                         ["Create a Password", "Create a"])


if __name__ == "__main__":
    unittest.main()
