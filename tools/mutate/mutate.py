"""Changes the library in one place at a time and tells whether the tests notice.

A mutant is the library with one operator, constant, condition or statement changed. A mutant is caught if a
test of its subsystem fails or hangs. An equivalent mutant behaves as the original. equivalent.txt lists the
equivalent mutants, with the reasons; they are not tried.
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
import typing

# Patterns and their replacements. The code is formatted, so blanks around a binary operator tell it from
# template brackets, signs, references and pointers.
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
# A statement on one line that declares nothing.
STATEMENT = re.compile(r"^(return|continue|break|(Q_EMIT )?[\w.:>()\[\]*-]+( [-+*/%|&]?= .*|\(.*\)|\+\+|--));$")
COMMENT_OR_LITERAL = re.compile(r'//[^\n]*|/\*.*?\*/|u?"(?:\\.|[^"\\\n])*"|u?\'(?:\\.|[^\'\\\n])*\'', re.DOTALL)
# Assertions make faults visible that would otherwise pass unnoticed.
FLAGS = "-O0 -D_GLIBCXX_ASSERTIONS -DQT_FORCE_ASSERTS"
# A test hangs if it takes TIMES_LONGER times its usual time and SECONDS_LONGER seconds more.
TIMES_LONGER = 10
SECONDS_LONGER = 5
# The limit of a test's memory, in bytes: a mutant that allocates without end must not stop the machine.
MOST_MEMORY = 4 << 30


def blank_out(match):
    return re.sub(r"[^\n]", "\0", match.group())


def line_mutants(code):
    """The changes of one line of code without comments and literals: start, end, replacement."""
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


class Mutant(typing.NamedTuple):
    file: str
    number: int
    before: str  # the line of code before
    original: str
    mutated: str

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
    before = ""
    for number, (line, blanked) in enumerate(zip(lines, code), start=1):
        for start, end, replacement in line_mutants(blanked):
            yield Mutant(file, number, before, line, line[:start] + replacement + line[end:])
        if blanked.strip(" \0"):
            before = line


def read_equivalents(path):
    """The keys of the mutants in the file, whose first lines describe its format."""
    equivalents = set()
    for entry in path.read_text().strip().split("\n\n")[1:]:
        lines = [line for line in entry.split("\n") if not line.startswith("# ")]
        if lines == entry.split("\n"):
            sys.exit(f"{path}: no reason is given for:\n{entry}")
        file, before, original, *mutated = lines
        for line in mutated:
            equivalents.add((file, before.strip(), original.removeprefix("- ").strip(),
                             line.removeprefix("+ ").strip()))
    return equivalents


class Workbench:
    """A copy of the repository in which mutants are built and tested."""

    def __init__(self, repository, folder, subsystem):
        self.source = folder / "source"
        self.build = folder / "build"
        self.tests = self.build / "tests" / subsystem
        # A run that was ended may have left a mutant here.
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
        """Checks that all tests pass without any mutant, and notes how long each takes."""
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
        # A test's own TIMEOUT property goes before --timeout, so this program waits itself. CTest gets a time
        # limit as well, because CTest goes on if this program is ended.
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
        """True if all tests pass, False if one fails, None if the mutant does not compile."""
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
        sys.exit(f"equivalent.txt has an entry that fits {places[key]} mutants instead of one: {key}")
    chosen = mutants[::arguments.every]
    tried = [mutant for mutant in chosen if mutant.key not in equivalents]
    print(f"{arguments.part}: {len(tried)} of {len(mutants)} mutants to try", flush=True)

    os.nice(19)  # leaves the processors to other programs
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    # Nobody reads the stack of a crash. MALLOC_PERTURB_ overwrites freed memory: its use then shows.
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


if __name__ == "__main__":
    main()
