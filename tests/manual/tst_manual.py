"""The user manual lies where the menu looks for it."""

import argparse
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

places = argparse.Namespace()


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

    def test_lies_beside_the_executable(self):
        self.assertTrue((places.programs / "lumetra").is_file())
        self.assertTrue(self.pdf.is_file())

    def test_can_be_searched_for_words(self):
        self.assertIn("Lumetra", self.words)

    def test_is_installed_beside_the_executable(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["cmake", "--install", places.build, "--component", "manual",
                            "--prefix", folder], capture_output=True, check=True)
            installed = list(pathlib.Path(folder).rglob(named_manual()))
            self.assertEqual([path.parent.name for path in installed], ["bin"])
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

    def test_links_from_chapter_to_chapter(self):
        made = make(self.pdf, self.chapter("# One {#one}\n\n[two](#two)\n"),
                    self.chapter("# Two {#two}\n"))
        self.assertEqual(made.stderr, "")
        self.assertEqual(made.returncode, 0)

    def test_gives_the_same_bytes_again(self):
        chapters = sorted((places.sources / "docs/manual").glob("*.md"))
        first, second = self.folder / "first.pdf", self.folder / "second.pdf"
        for pdf in (first, second):
            self.assertEqual(make(pdf, *chapters).returncode, 0)
        self.assertEqual(first.read_bytes(), second.read_bytes())
        # All chapters are in the manual that people get.
        self.assertEqual(first.read_bytes(), (places.programs / named_manual()).read_bytes())


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    for place in ("sources", "build", "programs"):
        parser.add_argument(f"--{place}", type=pathlib.Path, required=True)
    parser.add_argument("--python", required=True)
    _, rest = parser.parse_known_args(namespace=places)
    unittest.main(argv=[sys.argv[0], *rest], verbosity=2)
