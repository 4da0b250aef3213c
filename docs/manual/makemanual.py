#!/usr/bin/python3
"""Makes the user manual: chapters in Markdown become one PDF.

Usage: makemanual.py --check
       makemanual.py PDF LIST CHAPTER...

Each chapter is a file whose first heading is the chapter's title. Headings can have an anchor of
their own, as in "## Statistics {#statistics}", to which every chapter can link. Pictures are named
relative to the file that shows them. A link or a picture that leads nowhere is an error, and
nothing is written then. LIST becomes a rule for make that tells which pictures are in the PDF.

With --check only what the manual needs of the machine is looked for.

The same chapters give the same bytes at any time on any machine with the same packages.
"""

import datetime
import html
import os
import pathlib
import subprocess
import sys
import xml.etree.ElementTree as etree

# By the module or font that is looked for.
PACKAGES = {"markdown": "python3-markdown", "weasyprint": "weasyprint"}
FONTS = {"Liberation Sans": "fonts-liberation2", "DejaVu Sans Mono": "fonts-dejavu-core"}

TITLE = "Lumetra"
SUBTITLE = "User manual of the software"
EDITION = "Version 2.3"
# The day that the program itself tells in its about box.
DATE = "2025-04-15"

HEADINGS = {"h1", "h2", "h3", "h4"}
LISTED_HEADINGS = {"h1", "h2"}
EXTENSIONS = ["tables", "fenced_code", "attr_list", "def_list", "sane_lists", "toc", "admonition"]


class ManualError(Exception):
    """What is wrong with the chapters or the machine, for people to read."""


def missing_packages():
    missing = []
    for module, package in PACKAGES.items():
        try:
            __import__(module)
        except ImportError:
            missing.append(package)
    for font, package in FONTS.items():
        found = subprocess.run(["fc-match", "--format=%{family}", font], capture_output=True,
                               text=True, check=False).stdout
        if font not in found.split(","):
            missing.append(package)
    return missing


def check_machine():
    try:
        missing = missing_packages()
    except FileNotFoundError:
        missing = ["fontconfig"]
    if missing:
        raise ManualError("The user manual can not be made without these Debian packages: "
                          + " ".join(missing))


class Chapter:
    """One file of Markdown, as a tree of elements whose pictures have absolute addresses."""

    def __init__(self, path, converter):
        self.path = path
        self.pictures = []
        body = converter.reset().convert(path.read_text(encoding="utf-8"))
        try:
            self.tree = etree.fromstring(f"<section>{body}</section>")
        except etree.ParseError as error:
            raise ManualError(f"{path.name}: {error}") from error
        if not self.headings():
            raise ManualError(f"{path.name}: there is no heading")
        self.tree.set("class", self.headings()[0].get("id"))
        self.place_pictures()
        self.caption_pictures()
        self.keep_introductions()

    def place_pictures(self):
        for picture in self.tree.iter("img"):
            file = (self.path.parent / picture.get("src", "")).resolve()
            if not file.is_file():
                raise ManualError(f"{self.path.name}: there is no picture {picture.get('src')}")
            picture.set("src", file.as_uri())
            self.pictures.append(file)

    def caption_pictures(self):
        """A picture that is a paragraph of its own shows below what its text says."""
        for paragraph in self.tree.iter("p"):
            if [child.tag for child in paragraph] == ["img"]:
                paragraph.tag = "figure"
                caption = etree.SubElement(paragraph, "figcaption")
                caption.text = paragraph[0].get("alt")

    def keep_introductions(self):
        """A paragraph in front of a table or a list is not left alone at the end of a page."""
        for parent in self.tree.iter():
            for element, follower in zip(parent, list(parent)[1:]):
                if element.tag == "p" and follower.tag in {"table", "ul", "ol", "pre", "figure"}:
                    element.set("class", "introduction")

    def headings(self):
        return [element for element in self.tree.iter() if element.tag in HEADINGS]

    def links(self):
        return [link.get("href", "") for link in self.tree.iter("a")]


def read_chapters(paths):
    import markdown

    converter = markdown.Markdown(extensions=EXTENSIONS, output_format="xhtml")
    return [Chapter(path, converter) for path in paths]


def check_links(chapters):
    anchors = set()
    for chapter in chapters:
        for heading in chapter.headings():
            anchor = heading.get("id")
            if anchor in anchors:
                raise ManualError(f"{chapter.path.name}: two headings have the anchor #{anchor}")
            anchors.add(anchor)
    for chapter in chapters:
        for link in chapter.links():
            if not link.startswith("#") or link[1:] not in anchors:
                raise ManualError(f"{chapter.path.name}: the link {link} leads nowhere")


def number_headings(chapters):
    """Numbers stand in the text, so that they can be searched for and copied."""
    for number, chapter in enumerate(chapters, start=1):
        section = 0
        for heading in chapter.headings():
            if heading.tag == "h1":
                heading.text = f"{number}  {heading.text or ''}"
            elif heading.tag == "h2":
                section += 1
                heading.text = f"{number}.{section}  {heading.text or ''}"


def title_page():
    return (f'<section class="title"><p class="name">{TITLE}</p><p class="what">{SUBTITLE}</p>'
            f'<p class="edition">{EDITION}, {DATE}</p></section>')


def contents(chapters):
    lines = []
    for chapter in chapters:
        for heading in chapter.headings():
            if heading.tag in LISTED_HEADINGS:
                text = html.escape("".join(heading.itertext()))
                lines.append(f'<li class="{heading.tag}"><a href="#{heading.get("id")}">{text}</a>'
                             "</li>")
    return f'<section class="contents"><p>Contents</p><ul>{"".join(lines)}</ul></section>'


def make_page(chapters):
    body = "".join(etree.tostring(chapter.tree, encoding="unicode", method="html")
                   for chapter in chapters)
    return (f'<!DOCTYPE html><html lang="en"><head><meta charset="utf-8"/><title>{TITLE}: {SUBTITLE}'
            f'</title><meta name="dcterms.created" content="{DATE}"/></head><body>{title_page()}'
            f"{contents(chapters)}{body}</body></html>")


def make_pdf(chapters):
    import weasyprint

    # The fonts that are embedded get a date, too.
    day = datetime.datetime.fromisoformat(DATE).replace(tzinfo=datetime.timezone.utc)
    os.environ["SOURCE_DATE_EPOCH"] = str(int(day.timestamp()))
    style = weasyprint.CSS(filename=str(pathlib.Path(__file__).with_name("manual.css")))
    return weasyprint.HTML(string=make_page(chapters)).write_pdf(stylesheets=[style])


def picture_rule(pdf, chapters):
    pictures = sorted({picture for chapter in chapters for picture in chapter.pictures})
    return f"{pdf}:" + "".join(" " + str(picture).replace(" ", "\\ ") for picture in pictures) + "\n"


def make_manual(pdf, rule, paths):
    chapters = read_chapters(paths)
    check_links(chapters)
    number_headings(chapters)
    pdf.write_bytes(make_pdf(chapters))
    rule.write_text(picture_rule(pdf, chapters), encoding="utf-8")


def main(arguments):
    if arguments == ["--check"]:
        check_machine()
        return
    if len(arguments) < 3:
        raise ManualError("how to use it stands at the beginning of this file")
    check_machine()
    pdf, rule, *chapters = map(pathlib.Path, arguments)
    make_manual(pdf, rule, chapters)


if __name__ == "__main__":
    try:
        main(sys.argv[1:])
    except (ManualError, OSError) as error:
        sys.exit(f"makemanual.py: {error}")
