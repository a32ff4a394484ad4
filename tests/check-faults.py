#!/usr/bin/env python3
"""Applies the deliberate faults of tests/faults.txt one at a time and tells
which of them the tests catch.

    tests/check-faults.py [--revision REV] [--only ID,ID...] [--keep-going] [--list FILE]

The faults go into a scratch copy of the clone (build/faults/src, refreshed
from the working tree, or from a commit, at every start), built in its own build folder with
its own Wine prefix, so the clone and its build tree are never touched. Each
fault rebuilds only what its tests need and runs those tests; the file is
restored afterwards, whatever happens. The tree must pass the same tests
without faults first. Exits 0 when every fault was caught.
"""

import argparse
import fcntl
import filecmp
import os
import re
import shutil
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FIELDS = ("fault", "file", "find", "replace", "why", "tests")


def parse_faults(path):
    """The entries of the list: blocks of "field: value" lines, blank-separated."""
    faults, entry = [], {}
    with open(path, encoding="utf-8") as lines:
        for number, line in enumerate(lines, 1):
            line = line.rstrip("\n")
            if line.startswith("#"):
                continue
            if not line.strip():
                if entry:
                    faults.append(entry)
                    entry = {}
                continue
            match = re.fullmatch(r"(\w+):(?: (.*))?", line)
            field, value = match.groups("") if match else ("", "")
            if field not in FIELDS or field in entry:
                sys.exit(f"{path}:{number}: expected one of {', '.join(FIELDS)}, each once per fault")
            entry[field] = value
    if entry:
        faults.append(entry)
    for fault in faults:
        missing = [field for field in FIELDS if field not in fault and field != "replace"]
        if missing:
            sys.exit(f"{path}: fault {fault.get('fault', '?')} lacks {', '.join(missing)}")
        fault.setdefault("replace", "")
        fault["tests"] = fault["tests"].split()
    ids = [fault["fault"] for fault in faults]
    if len(set(ids)) != len(ids):
        sys.exit(f"{path}: fault names must be unique")
    return faults


def sync_scratch(source, revision):
    """Copies the clone's files into source: those of revision, else the
    working tree's (tracked and new, as they stand). Unchanged files are left
    alone so that their objects stay built."""
    origin = ROOT
    if revision:
        origin = os.path.join(os.path.dirname(source), "revision")
        shutil.rmtree(origin, ignore_errors=True)
        os.makedirs(origin)
        archive = subprocess.run(["git", "-C", ROOT, "archive", revision], check=True, capture_output=True)
        subprocess.run(["tar", "-x", "-C", origin], input=archive.stdout, check=True)
        listed = subprocess.run(["git", "-C", ROOT, "ls-tree", "-r", "-z", "--name-only", revision],
                                check=True, capture_output=True).stdout.decode().split("\0")
    else:
        listed = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "-co", "--exclude-standard"],
                                check=True, capture_output=True).stdout.decode().split("\0")
    names = {name for name in listed if name and not name.startswith("build/")}
    for folder, subfolders, files in os.walk(source):
        if folder == source and "build" in subfolders:
            subfolders.remove("build")
        for file in files:
            path = os.path.join(folder, file)
            if os.path.relpath(path, source) not in names:
                os.remove(path)
    for name in names:
        original = os.path.join(origin, name)
        copy = os.path.join(source, name)
        if not os.path.isfile(original):
            continue
        if os.path.isfile(copy) and filecmp.cmp(original, copy, shallow=False):
            continue
        os.makedirs(os.path.dirname(copy), exist_ok=True)
        # A new modification time, so that the build sees the change.
        shutil.copy(original, copy)


def run(command, **options):
    return subprocess.run(command, text=True, **options)


def configure(source, build, environment):
    cryptopp = run([os.path.join(ROOT, "scripts/setup.sh"), "--print-cryptopp-root"],
                   check=True, capture_output=True, stdin=subprocess.DEVNULL).stdout.strip()
    command = ["cmake", "-S", source, "-B", build, f"-DCRYPTOPP_ROOT={cryptopp}"]
    if not os.path.isfile(os.path.join(build, "CMakeCache.txt")):
        command += ["-G", "Ninja", f"-DCMAKE_TOOLCHAIN_FILE={source}/cmake/mingw-w64-x86_64.cmake",
                    "-DCMAKE_BUILD_TYPE=RelWithDebInfo"]
    result = run(command, env=environment, capture_output=True)
    if result.returncode:
        sys.exit("configuring the scratch build failed:\n" + result.stdout + result.stderr)


def test_targets(build, environment):
    """Test name -> the programs of the build that its command runs."""
    listing = run(["ctest", "--test-dir", build, "-N", "-V"], env=environment,
                  capture_output=True, check=True).stdout
    targets, current = {}, None
    for line in listing.splitlines():
        match = re.search(r"Test command: (.*)", line)
        if match:
            current = set(re.findall(r"([\w.-]+)\.exe\b", match.group(1)))
            continue
        match = re.match(r"\s*Test\s+#\d+: (\S+)", line)
        if match and current is not None:
            targets[match.group(1)] = current
            current = None
    return targets


def build_targets(build, targets, environment):
    result = run(["cmake", "--build", build, "--target", *sorted(targets)], env=environment,
                 capture_output=True)
    return result.returncode == 0, result.stdout[-4000:] + result.stderr[-4000:]


def run_tests(build, tests, environment):
    pattern = "^(" + "|".join(re.escape(test) for test in tests) + ")$"
    result = run(["ctest", "--test-dir", build, "-R", pattern, "--timeout", "600", "-j", "2",
                  "--output-on-failure"],
                 env=environment, capture_output=True)
    return result.returncode == 0, result.stdout[-3000:]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--list", default=os.path.join(ROOT, "tests/faults.txt"))
    parser.add_argument("--revision", help="a commit to copy instead of the working tree")
    parser.add_argument("--only", help="comma-separated fault names")
    parser.add_argument("--keep-going", action="store_true", help="go on after a fault that does not build")
    arguments = parser.parse_args()

    faults = parse_faults(arguments.list)
    if arguments.only:
        wanted = set(arguments.only.split(","))
        faults = [fault for fault in faults if fault["fault"] in wanted]
        if len(faults) != len(wanted):
            sys.exit("unknown fault names in --only")

    scratch = os.path.join(os.environ.get("TRAYWELL_BUILD_DIR", os.path.join(ROOT, "build")), "faults")
    # The build folder sits in the copy as ./build sits in the clone, so that
    # the compiler cache finds the clone's objects under the same relative paths.
    source = os.path.join(scratch, "src")
    build = os.path.join(source, "build")
    os.makedirs(scratch, exist_ok=True)
    lock = open(os.path.join(scratch, ".lock"), "w")
    fcntl.flock(lock, fcntl.LOCK_EX)

    # Objects compiled for the clone are reused: cache keys ignore the folder.
    environment = dict(os.environ, CCACHE_BASEDIR=source, CCACHE_NOHASHDIR="1")
    sync_scratch(source, arguments.revision)
    configure(source, build, environment)
    targets = test_targets(build, environment)
    for fault in faults:
        unknown = [test for test in fault["tests"] if test not in targets]
        if unknown:
            sys.exit(f"fault {fault['fault']}: no tests named {' '.join(unknown)}")
        path = os.path.join(source, fault["file"])
        with open(path, encoding="utf-8") as file:
            count = file.read().count(fault["find"])
        if count != 1:
            sys.exit(f"fault {fault['fault']}: the text to replace occurs {count} times in {fault['file']}")

    wine_run = [os.path.join(source, "scripts/wine-run"), "--prefix", os.path.join(build, "wineprefix")]
    all_tests = sorted({test for fault in faults for test in fault["tests"]})
    all_targets = set().union(*(targets[test] for test in all_tests))
    started = time.monotonic()
    built, log = build_targets(build, all_targets, environment)
    if not built:
        sys.exit("the scratch copy does not build without faults:\n" + log)
    run(wine_run + ["--start"], check=True, stdin=subprocess.DEVNULL)
    results = []
    try:
        passed, log = run_tests(build, all_tests, environment)
        if not passed:
            sys.exit("the tests fail without faults; nothing can be told:\n" + log)
        print(f"without faults: {len(all_tests)} test programs pass ({time.monotonic() - started:.0f} s)")
        for fault in faults:
            path = os.path.join(source, fault["file"])
            with open(path, encoding="utf-8", newline="") as file:
                original = file.read()
            begun = time.monotonic()
            try:
                with open(path, "w", encoding="utf-8", newline="") as file:
                    file.write(original.replace(fault["find"], fault["replace"]))
                fault_targets = set().union(*(targets[test] for test in fault["tests"]))
                built, log = build_targets(build, fault_targets, environment)
                if built:
                    passed, log = run_tests(build, fault["tests"], environment)
                    outcome = "missed" if passed else "caught"
                else:
                    outcome = "does not build"
            finally:
                with open(path, "w", encoding="utf-8", newline="") as file:
                    file.write(original)
            seconds = time.monotonic() - begun
            results.append((fault, outcome))
            print(f"{fault['fault']:<28} {outcome:<15} {seconds:5.0f} s  {fault['file']}", flush=True)
            if outcome == "does not build":
                print(log)
                if not arguments.keep_going:
                    break
    finally:
        run(wine_run + ["--stop"], stdin=subprocess.DEVNULL, capture_output=True)

    caught = sum(outcome == "caught" for _, outcome in results)
    print(f"\n{caught} of {len(results)} faults caught in {(time.monotonic() - started) / 60:.1f} minutes")
    for fault, outcome in results:
        if outcome != "caught":
            print(f"  {outcome}: {fault['fault']} ({fault['why']})")
    return 0 if caught == len(faults) else 1


if __name__ == "__main__":
    sys.exit(main())
