#!/usr/bin/env python3
"""Rehearses random batches and runs them: both must make the same changes, line for line, and end with the
same status, and the rehearsal must not change a byte of the company's files.

usage: rehearsal.py BIN_DIR [--seeds FIRST COUNT] [--products N] [--orders N] [--engine embedded|shops] [--keep]

Seeds take turns: nobody else uses the company; a killed program has left a write-ahead log (with or without
its index); a killed batch is rehearsed to its end; another program writes all the time; somebody edits a
product between rehearsal and run, which the run must tell."""

import argparse
import csv
import glob
import hashlib
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time

from acceptance import random_company

TIMES = {"muutettupvm", "muutettutime", "muutospvm", "muutosklo", "muutosaika", "muutettu", "tulpvm", "tulaika"}
MARK = ("INI", "ZAV.INI TAKSAVAIHE 20240901")
SCENES = {"embedded": ["alone", "log", "log", "batch", "batch", "writer", "edit"],
          "shops": ["alone", "batch", "edit"]}
# Leaves a write-ahead log: killed after its commit.
LOG_WRITER = """
import os, sqlite3, sys
db = sqlite3.connect(sys.argv[1])
db.execute("DELETE FROM rec_ASIAKAS WHERE id % 3 = 0")
db.execute("DELETE FROM rec_TUOTE WHERE id % 9 = 0")
db.commit()
os.kill(os.getpid(), 9)
"""


def bytes_of(c):
    """Digests of all files but the rehearsals' results, empty folders included."""
    state = {}
    for path, folders, files in os.walk(c.folder):
        folders[:] = [x for x in folders if os.path.join(path, x) != os.path.join(c.home, "KOEAJO")]
        state[path] = "folder"
        for name in files:
            with open(os.path.join(path, name), "rb") as f:
                state[os.path.join(path, name)] = hashlib.sha256(f.read()).hexdigest()
    return state


def start(c, *switches):
    return subprocess.Popen([c.program, "K", "/E", *switches], env=c.run_env, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def changes(lines):
    """The lines of lists of changes without times of change and the run mark, the changes numbered from 1."""
    kept = [row for row in lines if row[4].lower() not in TIMES and (row[2], row[3]) != MARK]
    numbers = {}
    return [(numbers.setdefault(row[0], len(numbers) + 1), *row[1:]) for row in kept]


def changes_of_runs(c, numbers):
    rows = []
    for run in numbers:
        text = c.zavdb("changes", "K", run, env=c.run_env).stdout
        rows += [((run, row[0]), *row[1:]) for row in list(csv.reader(text.splitlines(True)))[1:]]
    return changes(rows)


def runs(c):
    text = c.zavdb("runs", "K", env=c.run_env).stdout
    return {row["run"]: row["state"] for row in csv.DictReader(text.splitlines())}


def difference(one, other):
    for n, (a, b) in enumerate(zip(one, other)):
        if a != b:
            return f"line {n}: {a} against {b}"
    return f"{len(one)} lines against {len(other)}"


def same_sets(one, other):
    """On the shops' engine SQL rounds store prices: within a step of a rounding."""
    def key(line):
        return line[1:5]
    a, b = sorted(one, key=lambda x: x[1:]), sorted(other, key=lambda x: x[1:])
    if len(a) != len(b):
        return difference(a, b)
    for x, y in zip(a, b):
        if x[1:] == y[1:]:
            continue
        near = key(x) == key(y) and x[2] == "MYYMALAHINNAT" and abs(float(x[6]) - float(y[6])) <= 0.1000001
        if not near:
            return f"{x} against {y}"
    return ""


def interrupt(c, r, took):
    """Kills the batch somewhere."""
    p = start(c)
    time.sleep(r.uniform(0.05, max(took, 0.2)))
    p.send_signal(signal.SIGKILL)
    p.communicate()


def one(seed, args):
    c, definitions, _ = random_company(seed, args)
    r = random.Random(seed + 0.5)
    scenes = SCENES[args.engine]
    scene = scenes[seed % len(scenes)]
    database = os.path.join(c.data, "YRITYS.ZDB")
    problems = []
    settled = set()
    if scene == "log":
        subprocess.run([sys.executable, "-c", LOG_WRITER, database])
        assert os.path.getsize(database + "-wal") > 0
        if r.random() < 0.3:
            os.remove(database + "-shm")
    elif scene == "batch":
        fresh = c.folder + "-fresh"
        shutil.copytree(c.folder, fresh)
        began = time.monotonic()
        start(c).communicate()
        took = time.monotonic() - began
        shutil.rmtree(c.folder)
        os.rename(fresh, c.folder)
        interrupt(c, r, took)
        if args.engine == "shops":
            c.zavdb("tables", "K")  # the server's own files are none of the company's
        copy = c.folder + "-copy"  # zavdb would recover the log
        shutil.copytree(c.folder, copy)
        settled = {run for run, state in runs(c).items() if state not in ("interrupted", "stopped", "incomplete")}
        shutil.rmtree(c.folder)
        os.rename(copy, c.folder)
    before = bytes_of(c)
    writer = None
    if scene == "writer":
        writer = subprocess.Popen(["sh", "-c", 'while :; do "$0" sql K "update ASIAKAS set Nimi = \'x\' where Asiakas = 3"'
                                   ' >/dev/null; done', c.bins + "/zavdb"], env=c.env, start_new_session=True)
    p = start(c, "/KOEAJO")
    told = p.communicate(timeout=600)[1]
    if writer:
        os.killpg(writer.pid, signal.SIGTERM)
        writer.wait()
    else:
        after = bytes_of(c)
        problems += [f"{name} is not as before the rehearsal" for name in sorted(set(before) | set(after))
                     if before.get(name) != after.get(name)]
    folders = glob.glob(os.path.join(c.home, "KOEAJO", "*"))
    rehearsed = []
    if folders:
        names = set(os.listdir(folders[0]))
        if not names >= {"muutokset.csv", "ALVMUUTOS.LOG"} or os.listdir(os.path.dirname(folders[0])) != [
                os.path.basename(folders[0])]:
            problems.append(f"results: {names}")
        with open(os.path.join(folders[0], "muutokset.csv"), newline="", encoding="utf-8") as f:
            rehearsed = changes(list(csv.reader(f))[1:])
    edited = None
    if scene == "edit":
        prices = [x for x in rehearsed if x[1:3] == ("update", "TUOTE") and x[4] == "HINTA"]
        if prices and re.fullmatch(r"[\w -]+", prices[0][3]):
            edited = prices[0][3]
            c.zavdb("sql", "K", f"update TUOTE set HINTA = HINTA + 1000 where NUMERO = '{edited}'")
    run = start(c)
    told_run = run.communicate(timeout=600)[1]
    if run.returncode != p.returncode:
        problems.append(f"exit status {p.returncode} of the rehearsal, {run.returncode} of the run: {told} {told_run}")
    made = changes_of_runs(c, [x for x in runs(c) if x not in settled])
    log_name = os.path.join(c.home, "ALVMUUTOS.LOG")
    log = open(log_name, encoding="utf-8").read() if os.path.exists(log_name) else ""
    if edited:
        found = "".join(c.zavdb("verify", "K", x, check=False, env=c.run_env).stdout for x in runs(c))
        if "Huomaa: ajo poikkeaa koeajosta" not in log or f"TUOTE {edited} HINTA: rehearsal" not in found:
            problems.append(f"the run does not tell that product {edited} was edited")
    elif args.engine == "shops":
        problems += [x for x in [same_sets(rehearsed, made)] if x]
    elif rehearsed != made:
        problems.append(difference(rehearsed, made))
    if not edited and "poikkeaa koeajosta" in log:
        problems.append("the run says that it differs: " + log[log.index("Huomaa: ajo poik"):][:300])
    if "koeajoon ei voi verrata" in log:
        problems.append("the comparison failed")
    if problems:
        print(f"seed {seed}, {scene} ({c.folder}):")
        for line in problems[:8]:
            print("   ", line)
    elif not args.keep:
        shutil.rmtree(c.folder)
    return not problems, len(made), scene


def main():
    a = argparse.ArgumentParser()
    a.add_argument("bins")
    a.add_argument("--seeds", nargs=2, type=int, default=(1, 7), metavar=("FIRST", "COUNT"))
    a.add_argument("--products", type=int, default=60)
    a.add_argument("--orders", type=int, default=30)
    a.add_argument("--engine", choices=("embedded", "shops"), default="embedded")
    a.add_argument("--keep", action="store_true")
    args = a.parse_args()
    results = [one(s, args) for s in range(args.seeds[0], sum(args.seeds))]
    passed = sum(ok for ok, _, _ in results)
    print(f"{sum(n for _, n, _ in results)} changed fields compared")
    print(f"{passed} passed, {len(results) - passed} failed")
    sys.exit(0 if passed == len(results) else 1)


if __name__ == "__main__":
    main()
