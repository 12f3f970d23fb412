"""Turns Markdown files of this repository into pages for QDoc: markdown.py FOLDER FILE...

Converts headings, paragraphs, lists, tables, fenced code, and pictures on lines of their own. Inside the text it
converts code, bold, emphasis and links. A file that does not begin with a heading is an error. QDoc reports a link to a
file that is no page, and a picture that is not there.
"""

import re
import sys
from pathlib import Path

PAGES = {"CHANGELOG.md": "changes"}
BRIEFS = {
    "box.html": "The costs of the library on the device, and their budgets.",
    "changes.html": "What each version changed.",
    "performance.html": "The speed of the library against that of Qt.",
}


def inline(text):
    parts = re.split(r"(`[^`]+`|\[[^]]+\]\([^)]+\))", text)
    return "".join(span(part) for part in parts)


def span(part):
    if part.startswith("`"):
        return r"\c {%s}" % escape(part[1:-1])
    link = re.fullmatch(r"\[([^]]+)\]\(([^)]+)\)", part)
    if link and link[1].endswith(".md"):
        return r"\l {%s}" % target(link[2])
    if link:
        return r"\l {%s}{%s}" % (target(link[2]), escape(link[1]))
    part = re.sub(r"\*\*([^*]+)\*\*", r"\\b {\1}", escape(part))
    return re.sub(r"\*([^*]+)\*", r"\\e {\1}", part)


def target(address):
    if re.match("https?:", address):
        return address
    name = Path(address.split("#")[0]).name
    return page_name(name)


def escape(text):
    return text.replace("\\", r"\\").replace("*/", "*\\/")


def page_name(file_name):
    return PAGES.get(file_name, Path(file_name).stem) + ".html"


class Page:
    def __init__(self, file):
        self.lines = file.read_text(encoding="utf-8").splitlines()
        self.name = page_name(file.name)
        self.out = []

    def convert(self):
        title = self.lines.pop(0)
        if not title.startswith("# "):
            sys.exit(f"{self.name}: the first line is no heading")
        self.out += ["/*!", f"\\page {self.name}", f"\\title {title[2:]}"]
        self.out += [f"\\brief {BRIEFS[self.name]}", r"\ingroup background"]
        while self.lines:
            self.block()
        self.out.append("*/")
        return "\n".join(self.out) + "\n"

    def block(self):
        line = self.lines[0]
        heading = re.match(r"(#{2,4}) (.*)", line)
        if not line.strip():
            self.out.append(self.lines.pop(0))
        elif heading:
            self.lines.pop(0)
            self.out += [f"\\section{len(heading[1]) - 1} {inline(heading[2])}", ""]
        elif line.startswith("```"):
            self.code()
        elif picture := re.fullmatch(r"!\[([^]]+)\]\(([^)]+)\)", line):
            self.lines.pop(0)
            self.out.append(f"\\image {Path(picture[2]).name} {escape(picture[1])}")
        elif line.startswith("|"):
            self.table()
        elif line.startswith("- "):
            self.bullets()
        else:
            self.out.append(inline(" ".join(self.take(r"(?!#|```|!\[|\||- )\S"))))

    def take(self, pattern):
        taken = []
        while self.lines and re.match(pattern, self.lines[0]):
            taken.append(self.lines.pop(0))
        if not taken:
            sys.exit(f"{self.name}: this line cannot be converted: {self.lines[0]}")
        return taken

    def code(self):
        language = self.lines.pop(0)[3:]
        self.out.append(r"\code" if language == "cpp" else r"\badcode")
        while not self.lines[0].startswith("```"):
            self.out.append(self.lines.pop(0))
        self.lines.pop(0)
        self.out.append(r"\endcode")

    def table(self):
        rows = [re.split(r"(?<!\\)\|", line)[1:-1] for line in self.take(r"\|")]
        self.out.append(r"\table")
        for number, row in enumerate(rows):
            if number == 1:
                continue
            self.out.append(r"\header" if number == 0 else r"\row")
            self.out += [r"\li " + inline(cell.strip()) for cell in row]
        self.out.append(r"\endtable")

    def bullets(self):
        self.out.append(r"\list")
        for line in self.take(r"- |  \S"):
            if line.startswith("- "):
                self.out.append(r"\li " + line[2:])
            else:
                self.out[-1] += " " + line.strip()
        first = len(self.out) - 1 - self.out[::-1].index(r"\list")
        self.out[first + 1:] = [r"\li " + inline(item[4:]) for item in self.out[first + 1:]]
        self.out.append(r"\endlist")


def main():
    folder = Path(sys.argv[1])
    for name in sys.argv[2:]:
        page = Page(Path(name))
        (folder / f"{Path(page.name).stem}.qdoc").write_text(page.convert(), encoding="utf-8")


main()
