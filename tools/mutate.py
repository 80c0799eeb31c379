#!/usr/bin/env python3
"""Usage: tools/mutate.py [--faults N] [--seed S] [--folder FOLDER] [--list]

Tells how many wrong lines of code the tests catch. Plants N faults in src: a comparison turned, a constant changed, a
condition negated, a call left out. With each of them it runs the test programs of the library until a test fails. Faults are
drawn by lines, so a large file gets more of them; one that does not compile is drawn anew. The same seed draws the same
faults as long as src stays the same.

Most faults are built in together, beside what they replace, and QUILLO_FAULT in the environment chooses the one that
counts; those whose line has no place for a choice (a constexpr, a part of a longer statement) are built one after the other.
All of it happens in a copy of the working tree in build/mutate, which is kept to make the next run quick: with other tests
and the same src only the tests are built anew. --folder draws from one folder of src only, for instance Platform/Files;
--only tries the faults of these numbers again, for instance 3,17; --list tells the faults and builds nothing.
"""
import argparse
import collections
import concurrent.futures
import itertools
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
COPY = ROOT / "build/mutate"
GIGABYTE = 1 << 30
WORKERS = os.cpu_count() or 1

TURNED = {"==": ["!="], "!=": ["=="], "<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"], ">=": [">", "<"]}
COMPARISON = re.compile(r" (==|!=|<=|>=|<|>) ")
CONSTANT = re.compile(r"(?<![\w.'])(\d+(?:\.\d+)?)(?![\w.'])|\b(true|false)\b")
CONDITION = re.compile(r"\b(?:if|while) \((?!const|auto)(.+)\)(?= \{$|$)")
JOINED = re.compile(r" (&&|\|\|) ")
CALL = re.compile(r"^\s+(?!return\b|co_return\b|throw\b|delete\b|using\b|else\b)[A-Za-z_][\w:.]*(?:(?:->|\.)\w+)*\([^{}]*\);$")
# Assertions and logging are not what tests are for; a declaration's figures are seen where they are used.
NOT_CODE = re.compile(r"^\s*(?://|#|\*|/\*)|QUILLO_ASSERT|static_assert|\bqC?(?:Debug|Info|Warning|Critical)\b|Q_LOGGING")
# Lines that have room for both; the groups are what comes before, the value and what comes after.
CHOICES = [
    re.compile(r"^(\s*(?:\} else )?(?:if|while) \()(?!const\b|auto\b)(.+)(\)(?: \{)?)$"),
    re.compile(r"^(\s*return )(?!\{|\[)(.+)(;)$"),
    re.compile(r"^(\s*(?!static\b|constexpr\b|for\b|if\b|using\b)[\w:<>, ]+(?:\.\w+)?[\w\])]* [-+*/|]?= )(?!\{|\[)(.+)(;)$"),
]
CHOICE = """#include <cstdlib>
namespace {
[[maybe_unused]] bool plantedFault(int number) {
    static const char* const chosen = std::getenv("QUILLO_FAULT");
    static const int value = chosen != nullptr ? std::atoi(chosen) : -1;
    return value == number;
}
}
"""
STRING = re.compile(r'R?"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])\'')


def variants(line):
    """All faults of a line, as (what was done, the line that takes its place)."""
    code = line.split(" // ")[0].rstrip()
    if NOT_CODE.search(code) or code.count("(") != code.count(")"):
        return []
    plain = STRING.sub(lambda found: '"' + "_" * (len(found.group()) - 2) + '"', code)
    found = []

    def put(kind, start, end, text):
        found.append((kind, code[:start] + text + code[end:]))

    for match in COMPARISON.finditer(plain):
        for other in TURNED[match.group(1)]:
            put("comparison", *match.span(1), other)
    for match in CONSTANT.finditer(plain):
        number, word = match.groups()
        if word:
            put("constant", *match.span(), "false" if word == "true" else "true")
        else:
            put("constant", *match.span(), str(float(number) + 1) if "." in number else str(int(number) + 1))
    for match in CONDITION.finditer(plain):
        if ";" not in match.group(1):
            put("condition", *match.span(1), f"!({code[match.start(1):match.end(1)]})")
    for match in JOINED.finditer(plain):
        put("condition", *match.span(1), "||" if match.group(1) == "&&" else "&&")
    if CALL.match(plain):
        indent = len(code) - len(code.lstrip())
        found.append(("call left out", code[:indent] + ";"))
    return found


Fault = collections.namedtuple("Fault", "path line kind text code")  # line: zero-based


def report_of(fault):
    shown = fault.code if fault.text.strip() == ";" else fault.text
    return f"{fault.path}:{fault.line + 1}: {fault.kind}: {shown.strip()}"


def both(fault, number):
    """The line with the choice between the fault and what it replaces; none where there is no room for it."""
    if fault.text.strip() == ";":
        return re.sub(r"^(\s*)(.*)$", rf"\1if (!plantedFault({number})) {{ \2 }}", fault.code)
    for pattern in CHOICES:
        right, wrong = pattern.match(fault.code), pattern.match(fault.text)
        if right and wrong and right.group(1, 3) == wrong.group(1, 3) and right.group(2).count("(") == right.group(2).count(")"):
            before, value, after = right.groups()
            return f"{before}plantedFault({number}) ? ({wrong.group(2)}) : ({value}){after}"
    return None


def drawn_faults(folder, seed):
    """All lines in which there can be a fault, in the order of the lot and the kinds in turn, with one fault each."""
    lot = random.Random(seed)
    places = {}  # by kind
    for path in sorted((ROOT / "src" / folder).rglob("*.cpp")):
        for number, line in enumerate(path.read_text().splitlines()):
            for kind, text in variants(line):
                fault = Fault(path.relative_to(ROOT), number, kind, text, line.split(" // ")[0].rstrip())
                places.setdefault(kind, []).append(fault)
    for kind in sorted(places):
        lot.shuffle(places[kind])
    taken = set()
    while any(places.values()):
        for kind in sorted(places):
            while places[kind]:
                fault = places[kind].pop()
                if fault[:2] not in taken:
                    taken.add(fault[:2])
                    yield fault
                    break


def programs_of(source):
    """The test programs of the nearest folder of tests that has any."""
    folder = ROOT / "tests" / source.relative_to("src").parent
    while folder != ROOT:
        lists = folder / "CMakeLists.txt"
        names = re.findall(r"^quillo_test\((\w+)", lists.read_text(), re.M) if lists.exists() else []
        if names:
            return [COPY / "build/dev" / folder.relative_to(ROOT) / name for name in names]
        folder = folder.parent
    return []


def copy_tree():
    """Brings the copy up to date; a file that is the same keeps its date."""
    names = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
                           capture_output=True, check=True).stdout.decode().split("\0")
    wanted = {name for name in names if name and (ROOT / name).is_file()}
    for name in wanted:
        source, target = ROOT / name, COPY / name
        if not target.exists() or target.read_bytes() != source.read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)
    for folder in ("src", "tests"):
        for path in (COPY / folder).rglob("*"):
            if path.is_file() and str(path.relative_to(COPY)) not in wanted:
                path.unlink()


def configure():
    """As for every day, so that the compiler cache has most of it; but linked quickly, without what debuggers read."""
    if not (COPY / "build/dev/build.ninja").exists():
        command = ["cmake", "--preset", "dev", "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold -Wl,--strip-debug"]
        subprocess.run(command, cwd=COPY, stdout=subprocess.DEVNULL, check=True)


def built(programs):
    log = COPY / "build.log"
    with log.open("w") as output:
        command = ["tools/build.sh", "dev", *sorted(program.name for program in programs), "--", "-k", "0"]
        return subprocess.run(command, cwd=COPY, stdout=output, stderr=output, check=False).returncode == 0


def plant_together(faults):
    """Builds those in that have room for it, by number; gives their numbers. The others keep the line that is right."""
    planted = {number: line for number, fault in faults.items() if (line := both(fault, number))}
    programs = {program for fault in faults.values() for program in programs_of(fault.path)}
    written = set()
    while True:
        files = {faults[number].path for number in planted}
        for path in files | written:
            lines = (ROOT / path).read_text().splitlines(keepends=True)
            for number, line in planted.items():
                if faults[number].path == path:
                    lines[faults[number].line] = line + "\n"
            put(COPY / path, (CHOICE + "#line 1\n" if path in files else "") + "".join(lines))
        written |= files
        if built(programs):
            return set(planted)
        log = (COPY / "build.log").read_text()
        wrong = {(path, int(line)) for path, line in re.findall(r"(src/[\w/.]+\.cpp):(\d+):\d+: (?:fatal )?error", log)}
        refused = {number for number in planted if (str(faults[number].path), faults[number].line + 1) in wrong}
        named = {str(faults[number].path) for number in refused}
        refused |= {number for number in planted if str(faults[number].path) in {path for path, _ in wrong} - named}
        if not refused:
            sys.exit(f"The tests do not build: see {COPY / 'build.log'}.")
        for number in refused:
            del planted[number]


def put(path, text):
    if path.read_text() != text:
        path.write_text(text)


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (8 * GIGABYTE, 8 * GIGABYTE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def passes(program, seconds, tests="*", number=-1):
    """True, false or "time" where the program took longer; what it started ends with it."""
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", QT_SCALE_FACTOR="1", QUILLO_FAULT=str(number))
    arguments = [program, "--gtest_fail_fast", "--gtest_brief=1", f"--gtest_filter={tests}"]
    process = subprocess.Popen(arguments, env=environment, cwd=program.parent, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                               preexec_fn=limit_resources)
    try:
        return process.wait(seconds) == 0
    except subprocess.TimeoutExpired:
        return "time"
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def limit_of(program):
    """How many seconds it may take: far more than without a fault."""
    start = time.monotonic()
    if passes(program, 1800) is not True and passes(program, 1800) is not True:
        sys.exit(f"{program.name} does not pass without a fault.")
    return 30 + 4 * (time.monotonic() - start)


def result_of(fault, number, limits):
    programs = programs_of(fault.path)
    for tests in (f"*{fault.path.stem}*", "*"):  # what is named after the file is the likeliest to tell
        for program in programs:
            result = passes(program, limits[program], tests, number)
            if result is not True:
                return "caught" if result is False else "caught by the time limit"
    return "survived"


def result_alone(fault, number, limits):
    """Of a fault that is built by itself."""
    programs = programs_of(fault.path)
    target = COPY / fault.path
    unchanged = target.read_text()
    lines = (ROOT / fault.path).read_text().splitlines(keepends=True)
    lines[fault.line] = fault.text + "\n"
    target.write_text("".join(lines))
    try:
        return result_of(fault, number, limits) if built(programs) else "not compiled"
    finally:
        target.write_text(unchanged)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--faults", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--folder", default="")
    parser.add_argument("--only", default="")
    parser.add_argument("--list", action="store_true")
    options = parser.parse_args()
    lot = enumerate(drawn_faults(options.folder, options.seed))
    faults = dict(itertools.islice(lot, options.faults))
    if options.list:
        for number, fault in faults.items():
            print(f"{number:4} {report_of(fault)}")
        return 0

    copy_tree()
    configure()
    results = {}

    def note(number, fault, result):
        results[number] = (fault, result)
        print(f"{number:4} {result}: {report_of(fault)}", flush=True)

    together = plant_together(faults)
    wanted = {int(number) for number in options.only.split(",")} if options.only else set(faults)
    programs = sorted({program for number in wanted for program in programs_of(faults[number].path)})
    with concurrent.futures.ThreadPoolExecutor(WORKERS) as workers:
        limits = dict(zip(programs, workers.map(limit_of, programs)))
        running = {workers.submit(result_of, faults[number], number, limits): number
                   for number in sorted(together & wanted)}
        for future in concurrent.futures.as_completed(running):
            note(running[future], faults[running[future]], future.result())
    alone = [(number, faults[number]) for number in sorted(wanted - together)]
    while alone:
        number, fault = alone.pop(0)
        note(number, fault, result_alone(fault, number, limits))
        if results[number][1] == "not compiled" and not options.only and (another := next(lot, None)):
            limits.update((program, limit_of(program)) for program in programs_of(another[1].path)
                          if program not in limits)
            alone.append(another)

    counts = collections.Counter(result for _, result in results.values())
    planted = sum(counts.values()) - counts["not compiled"]
    print("\nSurvived:", *(f"{number:4} {report_of(fault)}" for number, (fault, result) in sorted(results.items())
                           if result == "survived"), sep="\n")
    print("\n" + ", ".join(f"{count} {result}" for result, count in sorted(counts.items())))
    print(f"{planted - counts['survived']} of {planted} faults caught")
    return 0


if __name__ == "__main__":
    sys.exit(main())
