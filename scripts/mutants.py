#!/usr/bin/env python3
"""Mutation testing: puts faults into the sources, one at a time, and reports which the tests find.

A fault (mutant) is one small change of the code: a sign, a comparison, swapped arguments, a dropped
call, a constant, a column or operator of an SQL text, a condition, a dropped early return. Each is
built, and the tests run until one fails. A fault that fails no test survives: a gap in the tests, dead
code, or a change without effect. All work is done on a copy of the sources in the build folder.

  scripts/mutants.py --count 20 --seed 7 --report mutants.md
  scripts/mutants.py --count 60 --list --save faults.json      only draw
  scripts/mutants.py --replay faults.json --save after.json    the same faults in later sources

With the same sources, a seed always draws the same faults. Tests that need SQL servers run when
TAKSAVAIHE_SQL_SERVERS is set, as in scripts/test.sh."""

import argparse
import atexit
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

sys.dont_write_bytecode = True
import mutant_sites  # noqa: E402
from mutant_sites import Fault  # noqa: E402
from mutant_tree import ROOT, Process, Tree  # noqa: E402

# Modules: path prefixes of their sources (the longest match counts) and the test programs to run first.
# Folders and programs that do not exist are ignored.
MODULES = (
    ("data/values", ["data/"], ["data_tests"]),
    ("data/dictionary", ["data/dictionary/"], ["data_tests"]),
    ("data/record", ["data/record/"], ["data_tests"]),
    ("data/catalogue", ["data/catalogue/"], ["data_tests", "engines_tests"]),
    ("data/sql", ["data/sql/"], ["data_tests"]),
    ("engines/embedded", ["engines/embedded/"], ["engines_tests", "data_tests"]),
    ("engines/extension", ["engines/extension/"], ["odbc_tests", "run_tests"]),
    ("engines/shops", ["engines/shops/"], ["engines_tests", "data_tests", "odbc_tests"]),
    ("platform", ["platform/"], ["company_tests"]),
    ("company", ["company/"], ["company_tests"]),
    ("framework/core", ["framework/core/"], ["framework_tests"]),
    ("framework/ui", ["framework/ui/"], ["framework_tests"]),
    ("search", ["search/"], ["search_tests"]),
    ("vatchange/definition", ["vatchange/definition/"], ["definition_tests", "rules_tests"]),
    ("vatchange/rules", ["vatchange/rules/"], ["rules_tests"]),
    ("vatchange/run", ["vatchange/run/"], ["run_tests"]),
    ("vatchange/orders", ["vatchange/orders/"], ["orders_tests"]),
    ("vatchange/journal", ["vatchange/journal/"], ["journal_tests"]),
    ("vatchange/rehearsal", ["vatchange/rehearsal/"], ["rehearsal_tests"]),
    ("vatchange/changes", ["vatchange/changes/"], ["changes_tests", "form_tests"]),
    ("vatchange/report", ["vatchange/report/"], ["report_tests", "form_tests"]),
    ("vatchange/form", ["vatchange/form/"], ["form_tests"]),
    ("shell", ["shell/"], ["shell_tests"]),
    ("tools", ["tools/"], ["tools_tests"]),
)
# Invented data, where changed numbers are not faults.
LEFT_OUT = ("tools/zavdb/demo/",)
KINDS = ("sign", "comparison", "arguments", "call", "constant", "text", "condition", "branch")

def say(*words):
    print(*words, flush=True)


def module_of(path):
    best = ("", None)
    for name, beginnings, _ in MODULES:
        for beginning in beginnings:
            if path.startswith(beginning) and len(beginning) > len(best[0]):
                best = (beginning, name)
    return None if path.startswith(LEFT_OUT) else best[1]


def sources(tree):
    """The compiled sources of each module."""
    found = {}
    for name in sorted(tree.commands):
        module = module_of(name)
        if module and not name.startswith("..") and os.path.exists(tree.path(name)):
            found.setdefault(module, []).append(name)
    return found


class Suite:
    """The tests listed by ctest. Those of one GoogleTest program are run together."""

    def __init__(self, tree):
        self.tree = tree
        output = subprocess.run(["ctest", "--test-dir", tree.build, "--show-only=json-v1"], check=True,
                                capture_output=True, text=True).stdout
        self.tests = {}
        for test in json.loads(output)["tests"]:
            command = test.get("command")
            if not command:
                raise SystemExit(f"ctest cannot run {test['name']}")
            if os.path.basename(command[0]).startswith("cmake"):
                continue  # checks source text, not behaviour
            properties = {p["name"]: p["value"] for p in test.get("properties", [])}
            if "PASS_REGULAR_EXPRESSION" in properties:
                continue  # tests a check of the sources; its exit status says nothing
            google = any(word.startswith("--gtest_filter") for word in command)
            name = os.path.basename(command[0]) if google else test["name"]
            self.tests.setdefault(name, {
                "command": command[:1] + ["--gtest_fail_fast", "--gtest_brief=0"] if google else command,
                "google": google,
                "environment": dict(v.split("=", 1) for v in properties.get("ENVIRONMENT", [])),
                "folder": properties.get("WORKING_DIRECTORY", tree.build),
                "alone": "RESOURCE_LOCK" in properties,
                "apart": [],  # cases that need their own process, as under ctest
            })
        self.seconds = {}

    def run(self, name, shard=None, only=None):
        """Runs one test program; returns the name of the failed test, or None."""
        test, scratch = self.tests[name], tempfile.mkdtemp(dir=self.tree.scratch)
        home = os.path.join(scratch, "home")
        os.makedirs(os.path.join(home, "run"), mode=0o700)
        environment = dict(os.environ, HOME=home, TMPDIR=scratch, XDG_CONFIG_HOME=home + "/.config",
                           XDG_RUNTIME_DIR=home + "/run", PYTHONDONTWRITEBYTECODE="1")
        environment.update(test["environment"])
        if shard:
            environment.update(GTEST_SHARD_INDEX=str(shard[0]), GTEST_TOTAL_SHARDS=str(shard[1]))
        command = list(test["command"])
        if only:
            command.append(f"--gtest_filter={only}")
        elif test["apart"]:
            command.append("--gtest_filter=-" + ":".join(test["apart"]))
        limit = 60 + 8 * self.seconds.get(name, 120)
        try:
            code, output = Process.run(command, limit, limited=True, cwd=test["folder"], env=environment)
        finally:
            shutil.rmtree(scratch, ignore_errors=True)
        if code == 0:
            return None
        failed = re.findall(r"\[  FAILED  \] (\w[\w/]*\.[\w/]+)", output)
        begun = re.findall(r"\[ RUN      \] (\S+)", output)
        case = failed[0] if failed else begun[-1] if test["google"] and begun else ""
        how = "" if failed or (code is not None and code > 0) else \
            " (hangs)" if code is None else f" (signal {-code})"
        return f"{name}{': ' + case if case else ''}{how}"

    @staticmethod
    def case_of(failure):
        case = re.search(r": (\S+)", failure)
        return case.group(1) if case else None

    def measure(self):
        """Runs all tests once on the unchanged sources."""
        record = os.path.join(os.path.dirname(self.tree.build), "baseline.json")
        state = {"digest": self.tree.digest, "servers": os.environ.get("TAKSAVAIHE_SQL_SERVERS", "")}
        if os.path.exists(record):
            with open(record, encoding="utf-8") as file:
                known = json.load(file)
            if known["state"] == state and set(known["seconds"]) == set(self.tests):
                self.seconds = known["seconds"]
                for name, cases in known["apart"].items():
                    self.tests[name]["apart"] = cases
                return
        failed = []
        for name, test in self.tests.items():
            start = time.monotonic()
            while failure := self.run(name):
                case = self.case_of(failure)
                if case and case not in test["apart"] and not self.run(name, only=case):
                    test["apart"].append(case)
                elif self.run(name):
                    failed.append(failure)
                    break
            self.seconds[name] = round(time.monotonic() - start, 1)
            say(f"  {self.seconds[name]:6.1f} s  {name}")
        if failed:
            raise SystemExit("Tests fail without a fault: " + ", ".join(failed))
        with open(record, "w", encoding="utf-8") as file:
            json.dump({"state": state, "seconds": self.seconds,
                       "apart": {name: test["apart"] for name, test in self.tests.items()}}, file, indent=1)

    def first_failure(self, names):
        """Runs programs in this order, one per job in parallel, until one fails."""
        waiting = []
        for name in names:
            test = self.tests[name]
            shards = self.tree.jobs if test["google"] and not test["alone"] and \
                self.seconds.get(name, 0) > 2 else 1
            waiting += [(name, (i, shards) if shards > 1 else None, None) for i in range(shards)]
            waiting += [(name, None, case) for case in test["apart"]]
        failures, lock, stop = [], threading.Lock(), threading.Event()

        def work():
            while not stop.is_set():
                with lock:
                    if not waiting:
                        return
                    name, shard, case = waiting.pop(0)
                failure = self.run(name, shard, case)
                if failure and not stop.is_set():
                    with lock:
                        failures.append((name, failure))
                    stop.set()
                    Process.end_all()

        # daemon threads: a signal ends this program without waiting for them
        threads = [threading.Thread(target=work, daemon=True) for _ in range(self.tree.jobs)]
        for thread in threads:
            thread.start()
        try:
            for thread in threads:
                thread.join()
        finally:
            stop.set()
        return failures[0] if failures else None

    def finds(self, module):
        """Builds the sources as they are now and returns the test that fails, or None."""
        own = next(tests for name, _, tests in MODULES if name == module)
        own = [name for name in own if name in self.tests]
        others = sorted((name for name in self.tests if name not in own), key=self.seconds.get)
        for names, targets in ((own, own), (others, [])):
            code, output = self.tree.make(*targets) if names else (0, "")
            if code != 0:
                return "the build" + (" (hangs)" if code is None else "")
            while names:
                failure = self.first_failure(names)
                if not failure:
                    break
                name, text = failure
                if "(hangs)" in text or self.confirmed(name, text):
                    return text
                say(f"  passes when repeated: {text}")
                names = names[names.index(name) + 1:]
        return None

    def confirmed(self, name, text):
        """Returns whether it fails again: a flaky failure says nothing about the fault."""
        case = self.case_of(text)
        return bool(self.run(name, only=case) if case else self.run(name))


class Draw:
    """Draws faults: a quota for every module, kinds in turn."""

    def __init__(self, tree, seed, modules):
        self.tree, self.chance = tree, random.Random(str(seed))
        columns = mutant_sites.Columns(tree.source)
        self.sites = {}
        for module, names in sources(tree).items():
            if modules and module not in modules:
                continue
            kinds = {}
            for name in names:
                for fault in mutant_sites.faults_of(module, name, tree.read(name), columns):
                    kinds.setdefault(fault.kind, []).append(fault)
            if kinds:
                self.sites[module] = kinds
        if not self.sites:
            raise SystemExit("no such module here; known: " + ", ".join(m[0] for m in MODULES))

    def shares(self, count):
        """Distributes half of the faults evenly, half by module size."""
        sizes = {m: sum(map(len, kinds.values())) for m, kinds in self.sites.items()}
        wanted = {m: count / 2 / len(sizes) + count / 2 * size / sum(sizes.values())
                  for m, size in sizes.items()}
        shares = {m: int(w) for m, w in wanted.items()}
        for m in sorted(wanted, key=lambda m: shares[m] - wanted[m])[:count - sum(shares.values())]:
            shares[m] += 1
        return shares

    def faults(self, count):
        """One of each module in turn, so that an interrupted run has covered them all."""
        shares = self.shares(count)
        drawn = dict.fromkeys(KINDS, 0)
        here = {module: dict.fromkeys(kinds, 0) for module, kinds in self.sites.items()}
        lines = set()
        while any(shares.values()):
            for module in [m for m in shares if shares[m] > 0]:
                shares[module] -= 1
                fault = self.one(module, here[module], drawn, lines)
                if fault:
                    yield fault

    def one(self, module, here, drawn, lines):
        kinds = self.sites[module]
        while kinds:
            kind = min(kinds, key=lambda k: (here[k], drawn[k], self.chance.random()))
            fault = kinds[kind].pop(self.chance.randrange(len(kinds[kind])))
            if not kinds[kind]:
                del kinds[kind]
            text = mutant_sites.apply(fault, self.tree.read(fault.file))
            if (fault.file, fault.number) not in lines and text is not None and \
                    self.tree.makes_a_difference(fault, text[0]):
                lines.add((fault.file, fault.number))
                here[kind] += 1
                drawn[kind] += 1
                return fault
        return None


def locate(tree, fault):
    """The source that holds this fault's line now, and its text with the fault; None when none does."""
    every = [name for names in sources(tree).values() for name in names]
    base = os.path.basename(fault.file)
    for names in ([n for n in every if n == fault.file], [n for n in every if os.path.basename(n) == base],
                  every):
        found = []
        for name in names:
            changed = mutant_sites.apply(fault, tree.read(name))
            if changed:
                found.append((changed[1], name, changed[0]))
        if found:
            return max(found, key=lambda entry: entry[0])[1:]
    return None


def short(text, length=70):
    text = " ".join(text.split())
    return text if len(text) <= length else text[:length - 3] + "..."


def place(fault):
    return f"{fault['file']}:{fault['number']}"


def change(fault):
    new = "(dropped)" if fault["new"] in ("", "{}") else short(fault["new"])
    return f"{short(fault['old'])} -> {new}"


def report(results, title):
    def cell(text):
        return text.replace("|", "\\|")
    lines = [f"# {title}", "", "| Module | Faults | Found | Survived |", "|---|---|---|---|"]
    ended = [r for r in results if r["result"] in ("found", "survived")]
    for module in [m[0] for m in MODULES] + ["all"]:
        of = [r for r in ended if module in (r["module"], "all")]
        if of:
            survived = sum(r["result"] == "survived" for r in of)
            lines.append(f"| {module} | {len(of)} | {len(of) - survived} | {survived} |")
    for heading, kind in (("Survived", "survived"), ("Found", "found"), ("Not applied", "")):
        of = [r for r in results if r["result"] == kind or (not kind and r not in ended)]
        if of:
            lines += ["", f"## {heading}", "", "| Place | Kind | Line | Change | Test | Seconds |",
                      "|---|---|---|---|---|---|"]
            lines += [f"| {place(r)} | {r['kind']} | `{cell(short(r['line'], 100))}` | `{cell(change(r))}` "
                      f"| {r.get('test') or r['result']} | {r.get('seconds', '')} |" for r in of]
    return "\n".join(lines) + "\n"


def arguments():
    a = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    a.add_argument("--seed", default="1", help="any text; default 1")
    a.add_argument("--count", type=int, default=20, help="number of faults to draw, default 20")
    a.add_argument("--module", action="append", help="only this module; may be repeated")
    a.add_argument("--list", action="store_true", help="only draw and print, run no tests")
    a.add_argument("--replay", metavar="FILE", help="replay the faults of a file written by --save instead of drawing")
    a.add_argument("--save", metavar="FILE", help="write faults and results as JSON after each fault")
    a.add_argument("--report", metavar="FILE", help="write the results as Markdown tables after each fault")
    a.add_argument("--folder", default=os.path.join(ROOT, "build-mutants"), help="default build-mutants/")
    a.add_argument("--jobs", type=int, default=os.cpu_count())
    return a.parse_args()


def main():
    args = arguments()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    signal.signal(signal.SIGHUP, lambda *_: sys.exit(129))
    atexit.register(Process.end_all)
    tree = Tree(os.path.abspath(args.folder), args.jobs)
    shutil.rmtree(tree.scratch, ignore_errors=True)
    os.makedirs(tree.scratch)
    say("Building the unchanged sources")
    tree.synchronize()
    tree.configure()
    code, output = tree.make(seconds=6 * 3600)
    if code != 0:
        raise SystemExit(output[-5000:])
    tree.read_commands()

    results = []
    title = f"Faults of {args.replay}" if args.replay else f"Faults drawn with seed {args.seed}"

    def finish(values, **more):
        results.append(dict(values, **more))
        if args.save:
            with open(args.save, "w", encoding="utf-8") as file:
                json.dump(results, file, indent=1, ensure_ascii=False)
        if args.report:
            with open(args.report, "w", encoding="utf-8") as file:
                file.write(report(results, title))

    if args.replay:
        with open(args.replay, encoding="utf-8") as file:
            names = Fault.__dataclass_fields__
            drawn = [Fault(**{k: v for k, v in values.items() if k in names}) for values in json.load(file)]
        drawn = [f for f in drawn if not args.module or f.module in args.module]
    else:
        drawn = Draw(tree, args.seed, args.module).faults(args.count)
    if args.list:
        for fault in drawn:
            say(f"{place(fault.values())}  {fault.kind}  {change(fault.values())}")
            finish(fault.values(), result="drawn")
        return 0

    suite = Suite(tree)
    say("Running the tests without a fault")
    suite.measure()
    for fault in drawn:
        located = locate(tree, fault)
        if located is None:
            say(f"{place(fault.values())}  gone: {short(fault.line)}")
            finish(fault.values(), result="gone")
            continue
        name, text = located
        fault.file, fault.module = name, module_of(name) or fault.module
        if args.replay and not tree.makes_a_difference(fault, text):
            say(f"{place(fault.values())}  does not compile or changes nothing: {change(fault.values())}")
            finish(fault.values(), result="no difference")
            continue
        start = time.monotonic()
        tree.put(name, text)
        try:
            test = suite.finds(fault.module)
        finally:
            tree.restore()
        seconds = round(time.monotonic() - start)
        result = "found" if test else "survived"
        say(f"{place(fault.values())}  {fault.kind}  {change(fault.values())}  "
            f"{result} {test or ''} {seconds} s")
        finish(fault.values(), result=result, test=test, seconds=seconds)
    tree.make()
    print(report(results, title).split("\n## Found")[0])
    return 0


if __name__ == "__main__":
    sys.exit(main())
