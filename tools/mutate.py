#!/usr/bin/env python3
"""Usage: tools/mutate.py [--faults N] [--seed S] [--folder FOLDER] [--list]

Tells how many wrong lines of code the tests catch. Plants N faults in src, one after the other: a comparison turned, a
constant changed, a condition negated, a call left out. For each it builds the test programs of the library and runs them
until a test fails. Faults are drawn by lines, so a large file gets more of them; one that does not compile is drawn anew. The
same seed draws the same faults as long as src stays the same.

All of it happens in a copy of the working tree in build/mutate, which is kept to make the next run quick. --folder draws
from one folder of src only, for instance Platform/Files; --list tells the faults and builds nothing.
"""
import argparse
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

TURNED = {"==": ["!="], "!=": ["=="], "<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"], ">=": [">", "<"]}
COMPARISON = re.compile(r" (==|!=|<=|>=|<|>) ")
CONSTANT = re.compile(r"(?<![\w.'])(\d+(?:\.\d+)?)(?![\w.'])|\b(true|false)\b")
CONDITION = re.compile(r"\b(?:if|while) \((?!const|auto)(.+)\)(?= \{$|$)")
JOINED = re.compile(r" (&&|\|\|) ")
CALL = re.compile(r"^\s+(?!return\b|co_return\b|throw\b|delete\b|using\b|else\b)[A-Za-z_][\w:.]*(?:(?:->|\.)\w+)*\([^{}]*\);$")
# Assertions and logging are not what tests are for; a declaration's figures are seen where they are used.
NOT_CODE = re.compile(r"^\s*(?://|#|\*|/\*)|QUILLO_ASSERT|static_assert|\bqC?(?:Debug|Info|Warning|Critical)\b|Q_LOGGING")
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


def report_of(path, number, kind, text):
    shown = (ROOT / path).read_text().splitlines()[number] if text.strip() == ";" else text
    return f"{path}:{number + 1}: {kind}: {shown.strip()}"


def drawn_faults(folder, seed):
    """All lines in which there can be a fault, in the order of the lot and the kinds in turn, with one fault each."""
    lot = random.Random(seed)
    places = {}  # by kind
    for path in sorted((ROOT / "src" / folder).rglob("*.cpp")):
        for number, line in enumerate(path.read_text().splitlines()):
            for kind, text in variants(line):
                places.setdefault(kind, []).append((path.relative_to(ROOT), number, kind, text))
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
            return [(name, COPY / "build/dev" / folder.relative_to(ROOT) / name) for name in names]
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
        command = ["tools/build.sh", "dev", *(name for name, _ in programs)]
        return subprocess.run(command, cwd=COPY, stdout=output, stderr=output, check=False).returncode == 0


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (8 * GIGABYTE, 8 * GIGABYTE))
    resource.setrlimit(resource.RLIMIT_FSIZE, (GIGABYTE, GIGABYTE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def passes(program, seconds):
    """True, false or "time" where the program took longer; what it started ends with it."""
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", QT_SCALE_FACTOR="1")
    process = subprocess.Popen([program, "--gtest_fail_fast", "--gtest_brief=1"], env=environment, cwd=program.parent,
                               stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               start_new_session=True, preexec_fn=limit_resources)
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


def result_of(programs, seconds):
    for name, program in programs:
        result = passes(program, seconds[name])
        if result is not True:
            return "caught" if result is False else "caught by the time limit"
    return "survived"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--faults", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--folder", default="")
    parser.add_argument("--list", action="store_true")
    options = parser.parse_args()
    faults = drawn_faults(options.folder, options.seed)
    if options.list:
        for _, fault in zip(range(options.faults), faults):
            print(report_of(*fault))
        return 0

    copy_tree()
    configure()
    seconds = {}  # what each program may take: far more than without a fault
    counts = {}
    survivors = []
    while sum(counts.values()) - counts.get("not compiled", 0) < options.faults:
        try:
            path, number, kind, text = next(faults)
        except StopIteration:
            break
        programs = programs_of(path)
        for name, program in programs:
            if name in seconds:
                continue
            start = time.monotonic()
            if not built([(name, program)]) or passes(program, 1800) is not True:
                sys.exit(f"{name} does not build or does not pass without a fault: see {COPY / 'build.log'}.")
            seconds[name] = 20 + 4 * (time.monotonic() - start)
        target = COPY / path
        lines = target.read_text().splitlines(keepends=True)
        unchanged = "".join(lines)
        lines[number] = text + "\n"
        target.write_text("".join(lines))
        start = time.monotonic()
        try:
            result = result_of(programs, seconds) if built(programs) else "not compiled"
        finally:
            target.write_text(unchanged)
        counts[result] = counts.get(result, 0) + 1
        report = report_of(path, number, kind, text)
        if result == "survived":
            survivors.append(report)
        print(f"{time.monotonic() - start:6.1f} s  {result}: {report}", flush=True)

    planted = sum(counts.values()) - counts.get("not compiled", 0)
    print("\nSurvived:", *survivors, sep="\n")
    print("\n" + ", ".join(f"{count} {result}" for result, count in sorted(counts.items())))
    print(f"{planted - len(survivors)} of {planted} faults caught")
    return 0


if __name__ == "__main__":
    sys.exit(main())
