#!/usr/bin/env python3
"""Usage: tools/coverage-table.py BUILD-FOLDER

Prints for each folder of src how many of its lines and branches were run, in percent, as the counters below BUILD-FOLDER
say, and leaves each file's figures in files.csv there. tools/coverage.sh calls it. The branches that only an exception
takes out of a call don't count.
"""
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def counted(notes):
    """What gcov tells of one object file, as (file of src, line, branch or none, whether it was run)."""
    result = subprocess.run(["gcov", "--json-format", "--stdout", "--branch-probabilities", notes], cwd=notes.parent,
                            capture_output=True, text=True, check=True)
    found = []
    for file in json.loads(result.stdout)["files"]:
        path = pathlib.Path(os.path.normpath(notes.parent / file["file"]))
        if not path.is_relative_to(ROOT / "src"):
            continue
        name = str(path.relative_to(ROOT / "src"))
        for line in file["lines"]:
            found.append((name, line["line_number"], None, line["count"] > 0))
            for index, branch in enumerate(line["branches"]):
                if not branch["throw"]:
                    found.append((name, line["line_number"], index, branch["count"] > 0))
    return found


def folder_of(name):
    parts = name.split("/")
    return "/".join(parts[:2] if parts[0] in ("Platform", "Views") and len(parts) > 2 else parts[:1])


def percent(counts):
    return f"{len(counts):7d} {100 * sum(counts) / max(1, len(counts)):5.1f}%"


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    run = {}  # a header is part of several object files
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        for found in workers.map(counted, sorted((build / "src").rglob("*.gcno"))):
            for name, line, branch, is_run in found:
                run[name, line, branch] = run.get((name, line, branch), False) or is_run
    folders, files = {}, {}
    for (name, _, branch), is_run in run.items():
        kind = 0 if branch is None else 1
        for table, key in ((files, name), (folders, folder_of(name)), (folders, "~all")):
            table.setdefault(key, ([], []))[kind].append(is_run)
    print(f"{'':22} {'lines':>14} {'branches':>14}")
    for name, (lines, branches) in sorted(folders.items()):
        print(f"{name.strip('~'):22} {percent(lines)} {percent(branches)}")
    with (build / "files.csv").open("w") as out:
        print("file,lines,lines run,branches,branches taken", file=out)
        for name, (lines, branches) in sorted(files.items()):
            print(name, len(lines), sum(lines), len(branches), sum(branches), sep=",", file=out)
    return 0


if __name__ == "__main__":
    sys.exit(main())
