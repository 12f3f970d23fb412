"""compare.py REPOSITORY GCOVR_JSON

Compares the lines and branches that the tests do not reach, as gcovr's JSON has them, with uncovered.txt.
"""

import collections
import json
import pathlib
import re
import sys

LIST = pathlib.Path(__file__).parent / "uncovered.txt"


def listed():
    """The entries of uncovered.txt, with one blank between the columns."""
    lines = (" ".join(line.split()) for line in LIST.read_text().split("\n"))
    return collections.Counter(line for line in lines if line and not line.startswith("#"))


def source_text(lines, number):
    """The text of a line. A line of punctuation alone, such as a brace, gets the line before it in front."""
    text = lines[number - 1].strip()
    return text if re.search(r"\w", text) else f"{source_text(lines, number - 1)} {text}"


def not_reached(repository, coverage):
    for file in coverage["files"]:
        lines = (repository / file["file"]).read_text().split("\n")
        for line in file["lines"]:
            branches = sum(branch["count"] == 0 for branch in line["branches"])
            what = "line" if line["count"] == 0 else f"branches:{branches}"
            if what != "branches:0":
                yield " ".join([file["file"], what, *source_text(lines, line["line_number"]).split()])


def tell(title, places):
    if places:
        print(f"{title}:", *sorted(places.elements()), sep="\n  ", file=sys.stderr)


repository, coverage = map(pathlib.Path, sys.argv[1:])
expected = listed()
found = collections.Counter(not_reached(repository, json.loads(coverage.read_text())))
tell("Not reached, but not listed", found - expected)
tell("Listed, but reached or gone", expected - found)
sys.exit(found != expected)
