#!/usr/bin/env python3
"""Damaged databases and hostile definitions against the real programs.

usage: attack.py BIN_DIR [--databases N] [--definitions N] [--seed S] [--products N] [--orders N]

No program may crash, hang or fail without a message, and one that reports success must have left what it
leaves without the attack: rows that the damage itself did not reach are compared cell by cell."""

import argparse
import collections
import copy
import csv
import datetime
import io
import os
import random
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time

import acceptance
import model
from acceptance import LAYOUTS, Company, make_company
from crash import CLOCK, TABLES, definition

KEYS = ("NUMERO", "Tuote", "TilausNro", "Numero")
SHARED = {"ALVKANTA", "TRYHMA", "ASRYHMA", "ASIAKAS", "MAARAALE", "X$File", "X$Field", "X$Index"}
LIMIT = 60  # seconds


class Attack:
    def __init__(self, args, r):
        self.r, self.problems, self.statuses = r, [], collections.Counter()
        self.folder = tempfile.mkdtemp(prefix="attack-")
        self.company = c = Company(args.bins, self.folder)
        self.list = os.path.join(self.folder, "ALVMUUTOS.INI")
        self.forms = os.path.join(c.data, "MAARITYS", "AlvMuutosLomake.INI")
        c.zavdb("create", "K", c.data)
        for name, rows in make_company(r, args.products, args.orders).items():
            c.fill(name, rows)
        os.makedirs(os.path.dirname(self.forms))
        self.lists = b"[ASETUKSET]\nmaar1=Muutos\n"
        self.text = "[Muutos]\n" + "".join(f"{k}={v}\n" for k, v in definition().items())
        acceptance.write(self.forms, self.text)
        open(self.list, "wb").write(self.lists)
        self.keep("fresh")

    def keep(self, name):
        shutil.rmtree(os.path.join(self.folder, name), ignore_errors=True)
        shutil.copytree(self.company.data, os.path.join(self.folder, name))

    def restore(self, name):
        shutil.rmtree(self.company.data)
        shutil.copytree(os.path.join(self.folder, name), self.company.data)

    def run(self, what, *command):
        """Exit status of a program, judged; the text of standard output and error."""
        c = self.company
        log = os.path.join(c.data, "ALVMUUTOS.LOG")
        old = os.path.getsize(log) if os.path.exists(log) else 0
        try:
            p = subprocess.run(command, env=c.env, capture_output=True, timeout=LIMIT)
        except subprocess.TimeoutExpired:
            self.problems.append(f"{what}: {command[1:]} hangs")
            return -1, ""
        told = (p.stdout + p.stderr).decode("utf-8", "replace")
        if os.path.exists(log) and os.path.getsize(log) > old:
            told += open(log, "rb").read()[old:].decode("utf-8", "replace")
        self.statuses[f"{command[1] if 'zavdb' in command[0] else '/E'} {p.returncode}"] += 1
        if p.returncode not in ((0, 1) if "zavdb" in command[0] else (0, 1, 2, 3)) or (p.returncode and not told.strip()):
            self.problems.append(f"{what}: {command[1:]} ends with {p.returncode}: {told[-300:]!r}")
        return p.returncode, told

    def zavdb(self, what, *args):
        return self.run(what, os.path.join(self.company.bins, "zavdb"), *args)

    def change(self, what):
        return self.run(what, self.company.program, "K", "/E")

    def snapshot(self):
        """Rows of every table without times of change; None for a table that cannot be read, even by its
        records alone."""
        out = {}
        for t in TABLES:
            out[t] = None
            for read in (self.company.read, self.records):
                try:
                    out[t] = collections.Counter(tuple((k, repr(v)) for k, v in row.items() if k not in CLOCK)
                                                 for row in read(t))
                    break
                except (SystemExit, ValueError, KeyError):
                    pass
        return out

    def records(self, table):
        text = self.company.zavdb("sql", "K", f'SELECT * FROM "{table}"').stdout
        return [acceptance.parse(table, row) for row in csv.DictReader(io.StringIO(text))]

    def compare(self, what, damaged, sound, got, want, checked):
        """Rows of got that differ from want although the damage did not reach their product or order. An
        order's totals are sums over an index: where the check tells a damaged one, they are not judged. An
        undo does not read the records that its run left alone."""
        rows = lambda a, b, t: list((a[t] - b[t]) + (b[t] - a[t]))
        lost = [t for t in TABLES if damaged[t] is None or got[t] is None]
        reached = {t: rows(damaged, sound, t) for t in TABLES if t not in lost}
        if any(reached.get(t, True) for t in SHARED):
            return
        excused = {v.lower() for d in reached.values() for row in d for k, v in row if k in KEYS}
        totals = {"MT": "MTRIVI: the index", "WINOT": "WINOTRI: the index"}
        for t in TABLES:
            if totals.get(t, "\0") in checked or (t in lost and what.endswith("undo")):
                continue
            wrong = [] if t in lost else [row for row in rows(got, want, t)
                                          if not any(k in KEYS and v.lower() in excused for k, v in row)]
            if t in lost and t in ("TUOTE", "ASALE", "MTRIVI", "WINOTRI", "KAMPPANJA") or wrong:
                self.problems.append(f"{what}: success, but {t}: {len(wrong)} rows differ, {wrong[:1]}, {lost}")

    # --- damaged databases

    def unfinished(self, name):
        """A company whose run was killed with some of its changes done."""
        while True:
            self.restore("fresh")
            p = subprocess.Popen([self.company.program, "K", "/E"], env=self.company.env, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL)
            time.sleep(self.r.uniform(0.1, 1) * self.took)
            p.kill()
            p.wait()
            if "interrupted" in self.company.zavdb("runs", "K").stdout:
                return self.keep(name)

    def damage(self):
        """Damages the database in the company's folder; says how."""
        r, name = self.r, os.path.join(self.company.data, "YRITYS.ZDB")
        db = sqlite3.connect(f"file:{name}?mode=ro", uri=True)
        size, = db.execute("PRAGMA page_size").fetchone()
        pages = db.execute("SELECT name, pageno, pgsize - unused FROM dbstat").fetchall()
        db.close()
        journal = [p for p in pages if p[0].startswith("zdb_")]
        table, page, _ = r.choice(journal if journal and r.random() < 0.5 else pages)
        wal = name + "-wal"
        if r.random() < 0.05 and os.path.exists(wal) and os.path.getsize(wal) > size:
            name, table = wal, "write-ahead log"
        data = bytearray(open(name, "rb").read())
        start, kind = (page - 1) * size % max(1, len(data) - size), r.choice(["bytes"] * 5 + ["run", "zero", "noise", "swap", "cut", "cells", "cells"])
        if r.random() < 0.1:
            start, table = 0, "header"
        at = [start + r.randrange(size) for _ in range(r.randint(1, 8))]
        if kind == "bytes":
            for i in at:
                data[i] ^= 1 << r.randrange(8) if r.random() < 0.5 else r.randrange(1, 256)
        elif kind == "run":
            n = r.randint(2, 64)
            data[at[0]:at[0] + n] = r.randbytes(n)
        elif kind in ("zero", "noise"):
            data[start:start + size] = bytes(size) if kind == "zero" else r.randbytes(size)
        elif kind == "swap":
            other = (r.choice(pages)[1] - 1) * size % max(1, len(data) - size)
            data[start:start + size], data[other:other + size] = data[other:other + size], data[start:start + size]
        elif kind == "cells":  # a number of cells that is too small: valid for the engine, rows are gone
            at = start + 3 + (100 if start == 0 else 0)
            n = int.from_bytes(data[at:at + 2], "big")
            data[at:at + 2] = (n - min(n, r.choice([1, 1, 2, n]))).to_bytes(2, "big")
        else:
            del data[r.choice([start, at[0]]):]
        open(name, "wb").write(data)
        return f"{kind} in {table}, page {page}"

    def databases(self, count):
        began = time.monotonic()
        self.change("setup")
        self.took = time.monotonic() - began
        self.keep("done")
        new = self.snapshot()
        for n in range(count):
            if n % 25 == 0:
                self.unfinished("half")
            base = ("fresh", "done", "half", "half")[n % 4]
            self.restore(base)
            sound = self.snapshot() if n % 25 < 4 or base == "half" else sounds[base]
            sounds = dict(sounds if n else {}, **{base: sound})
            self.restore(base)
            what = f"database {n} ({base}, {self.damage()})"
            self.keep("damaged")
            _, checked = self.zavdb(what, "check", "K")
            for command in (["tables", "K"], ["runs", "K"], ["changes", "K", "1"],
                            ["undo", "K", "1", "--dry-run"], ["verify", "K", "1"]):
                self.zavdb(what, *command)
            results = []
            for action in (lambda: self.change(what), lambda: self.zavdb(what, "undo", "K", "1", "--exact")):
                self.restore("damaged")
                results.append(action()[0] == 0 and self.snapshot())
            self.restore("damaged")
            damaged = self.snapshot() if any(results) else None
            for name, got, want in zip(("/E", "undo"), results, (new, sounds["fresh"])):
                if got:
                    self.compare(f"{what}, {name}", damaged, sound, got, want, checked)

    # --- hostile definitions and batch lists

    def hostile(self):
        """A hostile definition file and batch list, and the values they mean, None where that is open."""
        r, values, text, lists = self.r, definition(), self.text, self.lists
        value = r.choice(["nan", "NaN", "inf", "-inf", "1e309", "1e308", "1e-400", "-1", "0", "0x1p1", "1,01", "1.01.", "²", "1 .02",
                          "+1.02", "٣", "9" * 400, "1." + "0" * 500 + "1", "-0", "1e", "true", "x", "%s%n", "'; --", "2147483648",
                          "9223372036854775808", "1000", "-5", "1\x00", "\u202e1", "1;2", "2024-02-30", "1.25"])
        kind = r.randrange(10)
        if kind < 5:
            values[r.choice([c for c in values if model.kind_of(c) != "Text"] +
                            ["MTToimPaivaRajaus", "AsRyhmaCheckList", "PriceChangeLimitEdit", "ViimOstohintaEdit"])] = value
            text = "[Muutos]\n" + "".join(f"{k}={v}\n" for k, v in values.items())
            return f"{value[:20]!r}", text.encode(), lists, values
        line = "".join(r.choices(["=", "Tuntematon=5", "Hinta1Edit", "[", "]", "[]", ";", "\t", "Hinta10Edit=7", "\ufeff"], k=r.randint(1, 5)))
        where, data = r.choice(["definition", "list"]), None
        data = bytearray(text.encode() if where == "definition" else lists)
        if kind == 5:
            data += (line + "\n").encode()
        elif kind == 6:
            data += data.replace(b"1.0120967741935485", b"1.2").replace(b"=Muutos", b"=Toinen")
        elif kind == 7:
            data = data.decode().encode(r.choice(["utf-16", "utf-16-le", "utf-32", "utf-8-sig", "cp037"]))
        elif kind == 8:
            i = r.randrange(len(data))
            data[i:i] = r.choice([b"\0", b"\xff\xfe", b"\n" * 10 ** 5, b"A" * 10 ** 6, b"\n[A]\n" * 10 ** 5, b"\x1a"])
        else:
            data = None  # something else in the file's place
        files = (bytes(data) if data is not None else None, lists) if where == "definition" else (text.encode(), data and bytes(data))
        return f"{where}, kind {kind}, {line!r}", *files, kind == 8 and self.meant(files[0])

    def meant(self, text):
        """The values of a definition file in plain text."""
        section = text.decode("utf-8", "replace").partition("[Muutos]\n")[2].partition("\n[")[0]
        return dict(line.split("=", 1) for line in section.split("\n") if "=" in line)

    def definitions(self, count):
        self.restore("fresh")
        tables = {t: self.company.read(t) for t in LAYOUTS}
        for n in range(count):
            self.restore("fresh")
            what, text, lists, values = self.hostile()
            what = f"definition {n} ({what})"
            for name, data in ((self.forms, text), (self.list, lists)):
                os.remove(name)
                if data is not None:
                    open(name, "wb").write(data)
                else:
                    self.r.choice([os.mkdir, os.mkfifo, lambda x: os.symlink("/dev/zero", x), lambda x: os.symlink(x, x)])(name)
            start = datetime.datetime.now()
            status, told = self.change(what)
            stamps = (start.strftime("%H:%M:%S"), datetime.datetime.now().strftime("%H:%M:%S"))
            want = copy.deepcopy(tables)
            if status == 0 and "Mitään ei ajeta" not in told:
                try:
                    model.Run(want, model.Definition(values or definition()), start.strftime("%Y-%m-%d")).run()
                except model.Refused as e:
                    self.problems.append(f"{what}: ran, expected the refusal {e.args[0]}")
            wrong = [x for t in want if t != "INI" for x in acceptance.compare(t, self.company.read(t), want[t], stamps)]
            overflow = "1e308" in what and status == 1 and "vaihe epäonnistui" in told  # told and resumable
            if wrong and not overflow:
                self.problems.append(f"{what}: status {status}, but {wrong[:2]}; {told[-600:]!r}")
            for name in (self.list,):
                os.rmdir(name) if os.path.isdir(name) and not os.path.islink(name) else os.remove(name)
                open(name, "wb").write(self.lists)


def main():
    a = argparse.ArgumentParser()
    a.add_argument("bins")
    a.add_argument("--databases", type=int, default=8)
    a.add_argument("--definitions", type=int, default=12)
    a.add_argument("--seed", type=int, default=random.randrange(10 ** 6))
    a.add_argument("--products", type=int, default=150)
    a.add_argument("--orders", type=int, default=40)
    args = a.parse_args()
    print("seed", args.seed, flush=True)
    attack = Attack(args, random.Random(args.seed))
    attack.databases(args.databases)
    attack.definitions(args.definitions)
    for line in attack.problems[:40]:
        print(line)
    print(f"{args.databases} databases, {args.definitions} definitions; exit statuses: {dict(sorted(attack.statuses.items()))}")
    if not attack.problems:
        shutil.rmtree(attack.folder)
    print(f"{0 if attack.problems else 1} passed, {1 if attack.problems else 0} failed ({len(attack.problems)} problems)")
    sys.exit(1 if attack.problems else 0)


if __name__ == "__main__":
    main()
