"""The user manual lies where the menu looks for it, and tells of all that the program says.

What has to be in it is read from the sources, so that a new message, menu entry or option without a
word in the manual fails here.
"""

import argparse
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as etree

LITERAL = r'"(?:[^"\\]|\\.)*"'
LITERALS = re.compile(rf"(?:u8|QLatin1String\()?({LITERAL}(?:\s*{LITERAL})*)")
ESCAPES = {r"\n": "\n", r"\"": '"', r"\\": "\\", r"\t": "\t"}

# Controls of groups that no version has shown yet, with all that is in them.
HIDDEN_WIDGETS = {
    "paramsdialog.ui": {"frame_2", "detectorLabel1", "detectorLabel2"},
    "overviewwidget.ui": {"label_10", "label_9", "label_12", "typeComboBox", "type2ComboBox",
                          "commonLabel", "xLabel2", "yLabel2", "iLabel2", "showCheckBox2",
                          "groupLabel"},
    "mainwindow.ui": {"actionConnect", "actionDisconnect"},
    # Shown with one of two other texts.
    "connectionwidget.ui": {"Button"},
}
HIDDEN_SOURCES = {"groupcontrols.cpp"}
# The last one is replaced before the window opens.
HIDDEN_TEXTS = {"Common", "Subsystem", "Save setting file"}

# What is said of files and ports that can not be used; beside it, these files name elements and
# paths, which are single words.
REASONS = ["setup/settings.cpp", "setup/setupdocument.cpp", "setup/safefile.cpp",
           "link/porterrors.cpp"]
WORDS_OF_A_REASON = 3

places = argparse.Namespace()


def unquote(literals):
    """The text of literals that stand side by side."""
    text = "".join(literal[1:-1] for literal in re.findall(LITERAL, literals))
    return re.sub(r"\\.", lambda escape: ESCAPES.get(escape.group(), escape.group()), text)


def squeezed(text):
    """Lines of a page end anywhere, so spaces do not count."""
    return re.sub(r"\s", "", text)


def fixed_parts(text):
    """What of a text is always the same: all but its placeholders, and nothing without a word."""
    plain = re.sub(r"<[^>]*>", "", text)
    return [part.strip() for part in re.split(r"%\d", plain) if re.search(r"\w", part)
            and part not in HIDDEN_TEXTS]


def source_files():
    files = [path for ending in ("*.cpp", "*.h") for path in (places.sources / "src").rglob(ending)]
    return [path for path in files if path.name not in HIDDEN_SOURCES]


def translated_texts():
    for path in source_files():
        source = path.read_text(encoding="utf-8")
        for call in re.finditer(r"\btr\(\s*", source):
            found = LITERALS.match(source, call.end())
            if found:
                yield path.name, unquote(found.group(1))


def logged_warnings():
    for path in source_files():
        source = path.read_text(encoding="utf-8")
        for call in re.finditer(r"logMessage\(\)\.(?:warning|critical)\(\)(.*?);\n", source, re.DOTALL):
            for found in re.finditer(LITERAL, call.group(1)):
                yield path.name, unquote(found.group())


def logged_reasons():
    for name in REASONS:
        source = (places.sources / "src" / name).read_text(encoding="utf-8")
        source = re.sub(r"logMessage\(\)\.(info|debug)\(\).*?;\n", "", source, flags=re.DOTALL)
        for found in LITERALS.finditer(source):
            text = unquote(found.group(1))
            if len(re.findall(r"(?:^| )[A-Za-z]{2,}", text)) >= WORDS_OF_A_REASON:
                yield name, text


def detector_types():
    source = (places.sources / "src/model/detector.cpp").read_text(encoding="utf-8")
    for found in re.finditer(rf'QT_TRANSLATE_NOOP\("ParamsDialog", ({LITERAL})\)', source):
        yield "detector.cpp", unquote(found.group(1))


def form_texts():
    kinds = {"text", "title", "windowTitle", "placeholderText"}
    for path in (places.sources / "src").rglob("*.ui"):
        hidden = HIDDEN_WIDGETS.get(path.name, set())
        pending = [etree.parse(path).getroot()]
        while pending:
            element = pending.pop()
            if element.get("name") in hidden:
                continue
            if element.tag in {"property", "attribute"} and element.get("name") in kinds:
                yield path.name, "".join(element.itertext()).strip()
            pending.extend(element)


def options():
    source = (places.sources / "src/app/switches.cpp").read_text(encoding="utf-8")
    return re.findall(r'\{"(-\w)",', source)


def named_manual():
    """The name under which the application looks for the manual of the software."""
    source = (places.sources / "src/window/mainwindowslots.cpp").read_text(encoding="utf-8")
    return re.search(r'openUserManual\(QStringLiteral\("([^"]*Software[^"]*)"\)', source).group(1)


def make(pdf, *chapters):
    script = places.sources / "docs/manual/makemanual.py"
    return subprocess.run([places.python, script, pdf, pdf.with_suffix(".d"), *chapters],
                          capture_output=True, text=True, check=False)


class Manual(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.pdf = places.programs / named_manual()
        cls.words = subprocess.run(["pdftotext", "-raw", cls.pdf, "-"], capture_output=True,
                                   text=True, check=True).stdout
        cls.text = squeezed(cls.words)

    def assert_told(self, texts):
        found = list(texts)
        self.assertTrue(found, "nothing was found in the sources")
        for file, text in found:
            for part in fixed_parts(text):
                with self.subTest(file=file, text=part):
                    self.assertTrue(squeezed(part) in self.text, "the manual says nothing of this")

    def test_lies_beside_the_executable(self):
        self.assertTrue((places.programs / "lumetra").is_file())
        self.assertTrue(self.pdf.is_file())

    def test_has_every_message_of_the_code(self):
        self.assert_told(translated_texts())

    def test_has_every_menu_entry_field_and_button_of_the_forms(self):
        self.assert_told(form_texts())

    def test_has_every_warning_of_the_log(self):
        self.assert_told(logged_warnings())

    def test_has_every_reason_of_a_warning(self):
        self.assert_told(logged_reasons())

    def test_has_every_type_of_detector(self):
        self.assert_told(detector_types())

    def test_has_every_option_of_the_command_line(self):
        self.assertGreater(len(options()), 1)
        for option in options():
            with self.subTest(option=option):
                told = re.search(rf"(?<![\w-]){option}(?!\w)", self.words)
                self.assertTrue(told, "the manual says nothing of this")

    def test_is_installed_beside_the_executable(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["cmake", "--install", places.build, "--component", "manual",
                            "--prefix", folder], capture_output=True, check=True)
            installed = list(pathlib.Path(folder).rglob(named_manual()))
            self.assertEqual([path.parent for path in installed],
                             [pathlib.Path(folder) / "lib/lumetra"])
            self.assertEqual(installed[0].read_bytes(), self.pdf.read_bytes())


class Making(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.pdf = self.folder / "manual.pdf"

    def chapter(self, text):
        path = self.folder / f"{len(list(self.folder.iterdir()))}.md"
        path.write_text(text, encoding="utf-8")
        return path

    def assert_refused(self, made, complaint):
        self.assertNotEqual(made.returncode, 0)
        self.assertIn(complaint, made.stderr)
        self.assertFalse(self.pdf.exists())

    def test_refuses_a_link_that_leads_nowhere(self):
        made = make(self.pdf, self.chapter("# One {#one}\n\n[two](#two)\n"))
        self.assert_refused(made, "#two leads nowhere")

    def test_refuses_a_picture_that_does_not_exist(self):
        made = make(self.pdf, self.chapter("# One {#one}\n\n![Two](two.png)\n"))
        self.assert_refused(made, "no picture two.png")

    def test_refuses_an_anchor_that_two_headings_have(self):
        made = make(self.pdf, self.chapter("# One {#same}\n"), self.chapter("# Two {#same}\n"))
        self.assert_refused(made, "#same")

    def test_refuses_a_chapter_without_a_heading(self):
        made = make(self.pdf, self.chapter("One.\n"))
        self.assert_refused(made, "no heading")

    def test_links_from_chapter_to_chapter(self):
        made = make(self.pdf, self.chapter("# One {#one}\n\n[two](#two)\n"),
                    self.chapter("# Two {#two}\n"))
        self.assertEqual(made.stderr, "")
        self.assertEqual(made.returncode, 0)

    def test_gives_the_same_bytes_again_with_all_chapters(self):
        made = make(self.pdf, *sorted((places.sources / "docs/manual").glob("*.md")))
        self.assertEqual(made.stderr, "")
        self.assertEqual(self.pdf.read_bytes(), (places.programs / named_manual()).read_bytes())


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    for place in ("sources", "build", "programs"):
        parser.add_argument(f"--{place}", type=pathlib.Path, required=True)
    parser.add_argument("--python", required=True)
    _, rest = parser.parse_known_args(namespace=places)
    unittest.main(argv=[sys.argv[0], *rest], verbosity=2)
