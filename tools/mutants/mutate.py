#!/usr/bin/env python3
"""Changes operators, constants and conditions one at a time and runs the tests.

usage: mutate.py [--count N] [--seed N] [--workers N] [--least PERCENT] [FOLDER...]
       mutate.py --again REPORT: the survivors in what an earlier run said, as far as their
       lines still read as they did

Each worker has a copy of the sources and a build of its own below build/mutants. A mutant
dies when a test program fails, crashes or does not end; it does not count where it does not
compile or gives the same machine code. Exits 1 when fewer than PERCENT of the mutants die.
"""

import argparse
import hashlib
import os
import pathlib
import queue
import random
import re
import shutil
import subprocess
import sys
import time
from concurrent.futures import ThreadPoolExecutor

from sites import mutants_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutants"

# A folder's own tests, then whole jobs and those that read what it writes.
PROGRAMS = {
    "imaging": ["imaging", "reference", "levels", "escp", "orlo", "jobs", "exact"],
    "log": ["log", "jobs"],
    "system": ["system", "log", "pdfcopy", "jobs"],
    "escp": ["reference", "escp", "exact", "jobs"],
    "orlo": ["orlo", "reference", "jobs"],
    "filter": ["filter", "reference", "levels", "guard", "jobs", "exact"],
    "pdfcopy": ["pdfcopy"],
    "guard": ["guard"],
    "decode": ["decode", "view"],
}


def run(command, folder, **options):
    return subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, errors="replace", check=False, **options)


class Tree:
    """A copy of the sources with its build; one mutant at a time lives in it."""

    def __init__(self, name, programs):
        self.folder = WORK / name
        self.build_folder = self.folder / "build"
        self.limits = {}
        self.copy()
        must(run(["cmake", "-G", "Ninja", "-S", ".", "-B", "build", "-DCMAKE_BUILD_TYPE=None",
                  "-DCMAKE_CXX_FLAGS=-O1 -D_GLIBCXX_ASSERTIONS"], self.folder))
        for program in programs:
            must(self.build(self.target(program)))
            began = time.monotonic()
            must(self.test(program, 3600))
            # The machine may be busier later.
            self.limits[program] = 60 + 10 * (time.monotonic() - began)

    def copy(self):
        self.folder.mkdir(parents=True, exist_ok=True)
        names = run(["git", "ls-files"], ROOT).stdout.split("\n")
        for name in filter(None, names):
            target = self.folder / name
            source = ROOT / name
            if source.is_file() and not same(source, target):
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, target)

    @staticmethod
    def target(program):
        return f"{program}_test"

    def build(self, *targets):
        return run(["ninja", "-C", "build", *targets], self.folder)

    def test(self, program, limit):
        binary = self.build_folder / "tests" / program / self.target(program)
        command = [str(self.folder / "tools" / "own-tmp.sh"), str(self.folder), "--",
                   "timeout", "-k", "5", str(int(limit)), str(binary), "--gtest_fail_fast",
                   "--gtest_brief=1", "--gtest_filter=-Cost.*"]  # which wants a quiet machine
        return run(command, binary.parent)

    def objects_of(self, path):
        """The object that a source becomes; all that include it for a header."""
        if path.endswith(".cpp"):
            folder, name = path.split("/")
            return [f"{folder}/CMakeFiles/velka_{folder}.dir/{name}.o"]
        return [f"{path.split('/')[0]}/libvelka_{path.split('/')[0]}.a"]

    def digest(self, path):
        digest = hashlib.sha256()
        for name in self.objects_of(path):
            digest.update((self.build_folder / name).read_bytes())
        return digest.digest()

    def try_mutant(self, mutant):
        """(verdict, words): died, survived, same or broken."""
        source = self.folder / mutant.path
        text = source.read_text()
        objects = self.objects_of(mutant.path)
        must(self.build(*objects))
        before = self.digest(mutant.path)
        source.write_text(mutant.apply(text))
        try:
            if self.build(*objects).returncode != 0:
                return "broken", "does not compile"
            if self.digest(mutant.path) == before:
                return "same", "the same machine code"
            return self.run_tests(mutant)
        finally:
            source.write_text(text)

    def run_tests(self, mutant):
        for program in PROGRAMS[mutant.path.split("/")[0]]:
            if self.build(self.target(program)).returncode != 0:
                return "died", f"{program} does not build"
            result = self.test(program, self.limits[program])
            if result.returncode == 124:
                return "died", f"{program} does not end"
            if result.returncode != 0:
                return "died", f"{program}: {first_failure(result.stdout)}"
        return "survived", "no test fails"


def same(source, target):
    return target.is_file() and target.read_bytes() == source.read_bytes()


def must(result):
    if result.returncode != 0:
        sys.exit(f"error: {' '.join(result.args)}\n{result.stdout[-4000:]}")


def first_failure(output):
    failed = [line for line in output.split("\n") if line.startswith("[  FAILED  ]")]
    return failed[0][13:].split(",")[0].split(" (")[0] if failed else "it ended early"


def all_mutants(folders):
    """(mutant, its file's text)"""
    for folder in folders:
        for source in sorted((ROOT / folder).glob("*.cpp")) + sorted((ROOT / folder).glob("*.h")):
            path = str(source.relative_to(ROOT))
            if path != f"{folder}/main.cpp":  # nothing but the call
                text = source.read_text()
                for mutant in mutants_of(path, text):
                    yield mutant, text


def candidates(folders, chance):
    """One mutant of each line that has any: long tables are not worth more than code."""
    lines = {}
    for mutant, text in all_mutants(folders):
        lines.setdefault((mutant.path, text.count("\n", 0, mutant.offset)), []).append(mutant)
    found = [chance.choice(mutants) for mutants in lines.values()]
    chance.shuffle(found)
    return found


LINE_NUMBER = re.compile(r"(?<=:)\d+(?=: `)")


def survivors(report, folders):
    """Those that a report names as such; of lines that read alike, the one nearest by."""
    lines = [line for line in report.read_text().split("\n") if line.startswith("survived")]
    there = {}
    for mutant, text in all_mutants(folders):
        name = mutant.describe(text)
        alike = there.setdefault(LINE_NUMBER.sub("", name), {})
        alike.setdefault(name, []).append(mutant)
    found = []
    for name in (line[9:].rsplit(" (", 1)[0] for line in lines):
        alike = there.get(LINE_NUMBER.sub("", name), {})
        if not alike:
            print(f"gone     {name}", flush=True)
            continue
        at = int(LINE_NUMBER.search(name)[0])
        nearest = min(alike, key=lambda other: abs(int(LINE_NUMBER.search(other)[0]) - at))
        found += alike[nearest]
    return found


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--workers", type=int, default=os.cpu_count())
    parser.add_argument("--least", type=float, default=95)
    parser.add_argument("--again", type=pathlib.Path)
    parser.add_argument("folders", nargs="*", choices=[[], *PROGRAMS])
    arguments = parser.parse_args()
    folders = arguments.folders or list(PROGRAMS)
    if arguments.again:
        mutants = survivors(arguments.again, folders)
        print(f"{len(mutants)} survivors are tried again", flush=True)
    else:
        mutants = candidates(folders, random.Random(arguments.seed))
        print(f"{len(mutants)} lines can be changed; {arguments.count} are", flush=True)
    return judge(arguments, folders, mutants)


def verdicts(mutants, trees):
    """(verdict, its line) of each mutant, as they come."""
    idle = queue.SimpleQueue()
    for tree in trees:
        idle.put(tree)

    def attempt(mutant):
        tree = idle.get()
        verdict, words = tree.try_mutant(mutant)
        where = mutant.describe((tree.folder / mutant.path).read_text())
        idle.put(tree)
        return verdict, f"{verdict:8} {where} ({words})"

    with ThreadPoolExecutor(len(trees)) as pool:
        try:
            yield from pool.map(attempt, mutants)
        finally:
            pool.shutdown(wait=False, cancel_futures=True)


def judge(arguments, folders, mutants):
    programs = list(dict.fromkeys(name for folder in folders for name in PROGRAMS[folder]))
    names = [f"tree{worker}" for worker in range(arguments.workers)]
    with ThreadPoolExecutor(arguments.workers) as pool:
        trees = list(pool.map(lambda name: Tree(name, programs), names))
    counts = dict.fromkeys(["died", "survived", "same", "broken"], 0)
    for verdict, line in verdicts(mutants, trees):
        counts[verdict] += 1
        print(line, flush=True)
        if counts["died"] + counts["survived"] >= arguments.count:
            break
    tried = counts["died"] + counts["survived"]
    percent = 100 * counts["died"] / max(tried, 1)
    print(f"{counts['died']} of {tried} mutants died ({percent:.1f} %); beside them {counts['same']} "
          f"gave the same machine code and {counts['broken']} did not compile")
    return 0 if percent >= arguments.least else 1


if __name__ == "__main__":
    sys.exit(main())
