#!/usr/bin/env python3
"""Lines and branches that the tests reached, a folder and a source.

usage: cover.py BUILD-FOLDER, after its tests ran. Exits 1 when a folder that promises to
be covered is not. Branches that only an exception takes, and those of a record's own
construction, are the compiler's and do not count. A count below zero, as a program with
threads may leave one, is told and left out.
"""

import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
NOT_SHIPPED = ["tests/", "fuzz/", "bench/", "build/"]
PROMISED = {"filter", "escp", "orlo", "imaging", "system", "log", "pdfcopy", "guard", "decode"}
LEAST_LINES, LEAST_BRANCHES = 97, 90
COUNTS = ["line_covered", "line_total", "branch_covered", "branch_total"]


def measured(build):
    command = ["gcovr", "--root", ROOT, "--exclude-throw-branches", "--exclude-unreachable-branches",
               "--exclude-branches-by-pattern", r"^\s*(struct|class)\b.*",
               "--gcov-ignore-parse-errors", "--json-summary",
               "--txt", build / "coverage.txt", "--html-details", build / "coverage.html"]
    command += [part for folder in NOT_SHIPPED for part in ("--exclude", folder)]
    output = subprocess.run([*command, build], check=True, stdout=subprocess.PIPE).stdout
    return json.loads(output)["files"]


def percent(covered, total):
    return 100.0 * covered / total if total else 100.0


def shown(name, counts):
    lines, branches = percent(*counts[:2]), percent(*counts[2:])
    return (f"{name:28} lines {lines:6.1f} % of {counts[1]:5}   "
            f"branches {branches:6.1f} % of {counts[3]:5}")


def main():
    files = measured(pathlib.Path(sys.argv[1]).resolve())
    folders = {}
    for file in files:
        counts = [file[key] for key in COUNTS]
        print(shown(file["filename"], counts))
        sums = folders.setdefault(file["filename"].split("/")[0], [0, 0, 0, 0])
        folders[file["filename"].split("/")[0]] = [a + b for a, b in zip(sums, counts)]
    print()
    missed = []
    for name, counts in sorted(folders.items()):
        print(shown(name + "/", counts))
        enough = percent(*counts[:2]) >= LEAST_LINES and percent(*counts[2:]) >= LEAST_BRANCHES
        missed += [name] if name in PROMISED and not enough else []
    print(f"\nWhat was missed, line by line: {sys.argv[1]}/coverage.html")
    if missed:
        sys.exit(f"below {LEAST_LINES} % of lines or {LEAST_BRANCHES} % of branches: {', '.join(missed)}")


if __name__ == "__main__":
    main()
