"""Changes the library at one place at a time and tells whether the tests notice.

A mutant is the library with one operator, constant, condition or statement changed. It is caught when
a test of its subsystem fails, or runs much longer than it should. What behaves as the original does
stands in equivalent.txt, with the reason, and is not tried.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import queue
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

# What stands for what. Blanks around a binary operator tell it from template brackets, signs,
# references and pointers: the code is formatted.
REPLACEMENTS = [
    (r" < ", [" <= "]),
    (r" <= ", [" < "]),
    (r" > ", [" >= "]),
    (r" >= ", [" > "]),
    (r" == ", [" != "]),
    (r" != ", [" == "]),
    (r"&& ", ["|| "]),
    (r"\|\| ", ["&& "]),
    (r" \+ ", [" - "]),
    (r" - ", [" + "]),
    (r" \* ", [" / "]),
    (r" / ", [" * "]),
    (r" % ", [" / "]),
    (r" \+= ", [" -= "]),
    (r" -= ", [" += "]),
    (r"\+\+", ["--"]),
    (r"--", ["++"]),
    (r"(?<=[( ])!(?=[\w(])", [""]),
    (r"\btrue\b", ["false"]),
    (r"\bfalse\b", ["true"]),
    (r"\bstd::min\b", ["std::max"]),
    (r"\bstd::max\b", ["std::min"]),
    (r"(?<=if \().+(?=\)( \{)?$)", ["true", "false"]),
]
INTEGER = re.compile(r"(?<![\w.])\d+(?![\w.'])")
# A statement on a line of its own that declares nothing.
STATEMENT = re.compile(r"^(return|continue|break|(Q_EMIT )?[\w.:>()\[\]*-]+( [-+*/%|&]?= .*|\(.*\)|\+\+|--));$")
COMMENT_OR_LITERAL = re.compile(r'//[^\n]*|/\*.*?\*/|u?"(?:\\.|[^"\\\n])*"|u?\'(?:\\.|[^\'\\\n])*\'', re.DOTALL)
# What checks itself shows what would go wrong unseen.
FLAGS = "-O0 -D_GLIBCXX_ASSERTIONS -DQT_FORCE_ASSERTS"
# A test that takes this much longer than it did without a mutant hangs.
TIMES_LONGER = 10
SECONDS_LONGER = 5
# One that wants more memory than this fails, and leaves the rest to others.
MOST_MEMORY = 4 << 30


def blank_out(match):
    return re.sub(r"[^\n]", "\0", match.group())


def line_mutants(code):
    """The texts that one line of code, comments and literals blanked out, can be changed to."""
    indent = len(code) - len(code.lstrip())
    if code.lstrip().startswith(("#", "static_assert", "using ", "namespace ")):
        return
    for pattern, replacements in REPLACEMENTS:
        for match in re.finditer(pattern, code):
            for replacement in replacements:
                yield match.start(), match.end(), replacement
    for match in INTEGER.finditer(code):
        number = int(match.group())
        for other in (number + 1, number - 1) if number else (1,):
            yield match.start(), match.end(), str(other)
    if STATEMENT.match(code.strip().replace("\0", "_")) and not code.endswith("= default;"):
        yield indent, len(code), ";"


class Mutant:
    def __init__(self, file, number, before, original, mutated):
        self.file = file
        self.number = number
        self.before = before
        self.original = original
        self.mutated = mutated

    @property
    def key(self):
        return (self.file, self.before.strip(), self.original.strip(), self.mutated.strip())

    def __str__(self):
        return (f"{self.file}:{self.number}\n  {self.before.strip()}\n"
                f"- {self.original.strip()}\n+ {self.mutated.strip()}")


def mutants_of(repository, file):
    text = (repository / file).read_text()
    lines = text.split("\n")
    code = COMMENT_OR_LITERAL.sub(blank_out, text).split("\n")
    for number, (before, line, blanked) in enumerate(zip(["", *lines], lines, code), start=1):
        for start, end, replacement in line_mutants(blanked):
            yield Mutant(file, number, before, line, line[:start] + replacement + line[end:])


def read_equivalents(path):
    """File, line before, "- original", "+ mutated", "# reason" in one or more lines; blank lines between."""
    equivalents = set()
    for entry in re.split(r"\n{2,}", path.read_text().strip()):
        lines = entry.split("\n")
        if lines[0].startswith("#"):
            continue
        file, before, original, mutated, *reason = lines
        if not reason or not all(line.startswith("# ") for line in reason):
            sys.exit(f"{path}: no reason is given for:\n{entry}")
        equivalents.add((file, before.strip(), original.removeprefix("- ").strip(),
                         mutated.removeprefix("+ ").strip()))
    return equivalents


class Workbench:
    """A copy of the repository in which mutants are built and tested."""

    def __init__(self, repository, folder, subsystem):
        self.source = folder / "source"
        self.build = folder / "build"
        self.tests = self.build / "tests" / subsystem
        # What a run that was ended left there may be a mutant.
        shutil.rmtree(folder, ignore_errors=True)
        for part in ("CMakeLists.txt", "cmake", "docs", "include", "src", "tests"):
            original, copy = repository / part, self.source / part
            if original.is_dir():
                shutil.copytree(original, copy)
            else:
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(original, copy)
        self.run("cmake", "-G", "Ninja", "-S", self.source, "-B", self.build, "-DCMAKE_BUILD_TYPE=None",
                 f"-DCMAKE_CXX_FLAGS={FLAGS}", "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache",
                 "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", "-DOVELIN_BUILD_EXAMPLES=OFF", "-DOVELIN_INSTALL=OFF")
        self.durations = {}
        self.check()

    def check(self):
        """Sees that everything works without any mutant, and how long it takes."""
        if not self.compile():
            sys.exit(f"Building fails without any mutant: ninja -C {self.build}")
        for name in self.test_names():
            started = time.monotonic()
            if not self.passes(name, 600):
                sys.exit(f"{name} fails without any mutant.")
            self.durations[name] = time.monotonic() - started

    @staticmethod
    def run(*command):
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)

    def compile(self):
        ninja = subprocess.run(["ninja", "-C", self.build, f"tests/{self.tests.name}/all"],
                               capture_output=True, text=True)
        if ninja.returncode != 0 and ": error: " not in ninja.stdout:
            sys.exit(f"Building failed, and not because of the code:\n{ninja.stdout}{ninja.stderr}")
        return ninja.returncode == 0

    def test_names(self):
        shown = subprocess.run(["ctest", "--test-dir", self.tests, "--show-only=json-v1"],
                               check=True, capture_output=True, text=True).stdout
        return [test["name"] for test in json.loads(shown)["tests"]]

    def passes(self, name, seconds):
        # CTest waits longer for a test that says so itself. When this program is ended, CTest goes on alone.
        command = ["ctest", "--test-dir", self.tests, "-R", f"^{re.escape(name)}$", "--no-tests=error",
                   "--timeout", str(int(seconds) + 1)]
        test = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                start_new_session=True)
        try:
            return test.wait(seconds) == 0
        except subprocess.TimeoutExpired:
            os.killpg(test.pid, signal.SIGKILL)
            test.wait()
            return False

    def survives(self, mutant):
        """Whether all tests pass; None if the mutant is no program."""
        path = self.source / mutant.file
        original = path.read_text()
        lines = original.split("\n")
        lines[mutant.number - 1] = mutant.mutated
        path.write_text("\n".join(lines))
        try:
            if not self.compile():
                return None
            return all(self.passes(name, duration * TIMES_LONGER + SECONDS_LONGER)
                       for name, duration in sorted(self.durations.items(), key=lambda item: item[1]))
        finally:
            path.write_text(original)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("repository", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("least", type=float)
    parser.add_argument("part", help="a subsystem, or one file of it")
    parser.add_argument("--every", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=1)
    arguments = parser.parse_args()

    part = arguments.repository / "src" / arguments.part
    subsystem = pathlib.PurePath(arguments.part).parts[0]
    sources = sorted(part.glob("*.[ch]*")) if part.is_dir() else [part]
    files = [str(path.relative_to(arguments.repository)) for path in sources]
    mutants = [mutant for file in files for mutant in mutants_of(arguments.repository, file)]
    equivalents = read_equivalents(pathlib.Path(__file__).parent / "equivalent.txt")
    places = collections.Counter(mutant.key for mutant in mutants)
    for key in sorted(key for key in equivalents if key[0] in files and places[key] != 1):
        sys.exit(f"equivalent.txt names what is a mutant at {places[key]} places instead of one: {key}")
    chosen = mutants[::arguments.every]
    tried = [mutant for mutant in chosen if mutant.key not in equivalents]
    print(f"{arguments.part}: {len(tried)} of {len(mutants)} mutants to try", flush=True)

    # It takes long, and nobody waits for it.
    os.nice(19)
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    # Where a mutant crashes does not matter, but it should crash when it uses memory that it gave back.
    os.environ.update(QTEST_DISABLE_STACK_DUMP="1", MALLOC_PERTURB_="165")
    benches = queue.Queue()
    for number in range(arguments.jobs):
        benches.put(Workbench(arguments.repository, arguments.folder / f"{subsystem}-{number}", subsystem))

    counts = {file: {"caught": 0, "survived": 0, "not compiled": 0} for file in files}

    def attempt(mutant):
        bench = benches.get()
        try:
            return mutant, bench.survives(mutant)
        finally:
            benches.put(bench)

    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for mutant, survives in pool.map(attempt, tried):
            outcome = {None: "not compiled", True: "survived", False: "caught"}[survives]
            counts[mutant.file][outcome] += 1
            if survives:
                print(f"survived: {mutant}\n", flush=True)
    while not benches.empty():
        benches.get().check()

    for file, count in counts.items():
        print(f"{file}: " + ", ".join(f"{number} {outcome}" for outcome, number in count.items()))
    caught = sum(count["caught"] for count in counts.values())
    survived = sum(count["survived"] for count in counts.values())
    equivalent = len(chosen) - len(tried)
    share = 100 * caught / max(1, caught + survived)
    share_of_all = 100 * caught / max(1, caught + survived + equivalent)
    print(f"{arguments.part}: {len(chosen)} mutants, {equivalent} equivalent, {caught} of {caught + survived} "
          f"tried caught, {share:.1f} % ({share_of_all:.1f} % with the equivalent ones)")
    sys.exit(0 if share >= arguments.least else f"Less than {arguments.least:g} % were caught.")


main()
