#!/usr/bin/env python3
"""Kills a whole run at random moments and checks what is left.

usage: crash.py BIN_DIR [--kills N] [--seed S] [--products N] [--orders N]

After each kill -9 the company must open and pass `zavdb check`; every record must be old or new; every
product in the log must be new; a rerun must end with the products, groups, store prices and order rows
of an uninterrupted run (headers: as summed again over those rows). Every second kill waits until the
run has reached the orders."""

import argparse
import itertools
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

import acceptance
from acceptance import LAYOUTS, Company, make_company

# columns with the time of a change, which are not compared
CLOCK = {"MUUTETTUPVM", "muutettutime", "MuutosPvm", "MuutosKlo", "muutosKlo", "Muutettu", "TulPvm"}
KEYS = {"TUOTE": ["NUMERO"], "TRYHMA": ["Nro"], "MYYMALAHINNAT": ["Myymala", "Tuote"],
        "MTRIVI": ["TilausNro", "RiviNro"], "WINOTRI": ["TilausNro", "RiviNro"],
        "MT": ["Numero"], "WINOT": ["TilausNro"]}
HEADERS = ("MT", "WINOT")
FIELDS = {t: [f[0] for f in LAYOUTS[t] if f[0] not in CLOCK] for t in KEYS}


def definition():
    d = {"Tuoteloki": "1", "LahdeAlvLuokkaEdit": "1", "KohdeAlvLuokkaEdit": "5", "OstohintaEdit": "1.0120967741935485",
         "MtCheckBox": "1", "OtCheckBox": "1", "MtKerroinEdit": "1.0120967741935485"}
    for n, column in enumerate(acceptance.model.PRICE_COLUMNS, 1):
        d[f"Hinta{n}Edit"], d[f"HintaLahde{n}"] = "1.0120967741935485", column
    return d


def rows(company, table):
    return {tuple(r[k] for k in KEYS[table]): tuple(v for k, v in r.items() if k not in CLOCK)
            for r in company.read(table)}


def state(company):
    return {t: rows(company, t) for t in KEYS}


def told(company):
    """Numbers of the products that the change log lists as converted."""
    try:
        with open(os.path.join(company.data, "ALVMUUTOS.LOG"), encoding="utf-8") as f:
            lines = [line.partition("  Tuote: ")[2] for line in f if "  Tuote: " in line]
    except FileNotFoundError:
        return []
    return [line[:line.index(" VANHA")] for line in lines]


def unmarked(row):
    """A sales row without its margin mark, which the totals pass writes separately."""
    kate = FIELDS["MTRIVI"].index("Kate")
    return row[:kate] + (0.0,) + row[kate + 1:] if row[kate] == 1 else row


def known(table, row, states):
    """True if a row matches one of the states."""
    if row in states:
        return True
    if table == "MTRIVI":
        return row == unmarked(states[1])
    # the classes of a group are changed by a statement each
    return table == "TRYHMA" and all(value in column for value, column in zip(row, zip(*states)))


def summed(number, header, order_rows):
    """True if a sales header has the totals of its rows. A killed pass may have marked some of them:
    those count in the margins, rows marked in the last pass do not."""
    named = [dict(zip(FIELDS["MTRIVI"], row)) for key, row in sorted(order_rows.items()) if key[0] == number]
    marks = [n for n, row in enumerate(named) if row["Kate"] == 1]
    header = dict(zip(FIELDS["MT"], header))
    for before in itertools.product((True, False), repeat=len(marks)):
        lines = [dict(row) for row in named]
        for n, was in zip(marks, before):
            lines[n]["Kate"] = 1.0 if was else 0.0
        sums = dict(header)
        acceptance.model.Run.sales_totals(sums, lines, 2)
        if all(abs(sums[f] - header[f]) < 0.006 for f in ("Summa", "SummaAlv0", "Kate", "KateAlv0")):
            return True
    return False


def start(company):
    return subprocess.Popen([company.program, "K", "/E", "/U"], env=company.env,
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def reaches_orders(company, process):
    """Waits until the run has begun the open orders, its last and shortest steps, or has ended."""
    name = os.path.join(company.data, "ALVMUUTOS.LOG")
    while process.poll() is None:
        if os.path.exists(name) and "Aloitetaan myyntitilausten päivitys" in open(name, encoding="utf-8").read():
            return
        time.sleep(0.002)


def main():
    a = argparse.ArgumentParser()
    a.add_argument("bins")
    a.add_argument("--kills", type=int, default=5)
    a.add_argument("--seed", type=int, default=random.randrange(10 ** 6))
    a.add_argument("--products", type=int, default=150)
    a.add_argument("--orders", type=int, default=40)
    args = a.parse_args()
    print("seed", args.seed)
    r = random.Random(args.seed)
    folder = tempfile.mkdtemp(prefix="crash-")
    company = Company(args.bins, folder)
    company.zavdb("create", "K", company.data)
    for name, content in make_company(r, args.products, args.orders).items():
        company.fill(name, content)
    os.makedirs(os.path.join(company.data, "MAARITYS"))
    with open(os.path.join(company.data, "MAARITYS", "AlvMuutosLomake.INI"), "w") as f:
        f.write("[Muutos]\n" + "".join(f"{k}={v}\n" for k, v in definition().items()))
    with open(os.path.join(folder, "ALVMUUTOS.INI"), "w") as f:
        f.write("[ASETUKSET]\nmaar1=Muutos\n")
    fresh = os.path.join(folder, "fresh")
    shutil.copytree(company.data, fresh)
    old = state(company)
    began = time.monotonic()
    p = start(company)
    reaches_orders(company, p)
    at_orders = time.monotonic() - began
    if p.wait() != 0:
        raise SystemExit("the uninterrupted run failed")
    took = time.monotonic() - began
    new = state(company)
    start(company).wait()
    again = state(company)  # headers after a second totals pass
    problems, between, in_orders, lines = [], 0, 0, 0
    for n in range(args.kills):
        shutil.rmtree(company.data)
        shutil.copytree(fresh, company.data)
        p = start(company)
        if n % 2:
            reaches_orders(company, p)
            time.sleep(r.uniform(0, took - at_orders))
        else:
            time.sleep(r.uniform(0.02, took))
        p.send_signal(signal.SIGKILL)
        killed = p.wait() == -signal.SIGKILL
        check = company.zavdb("check", "K", check=False)
        if check.returncode:
            problems.append(f"kill {n}: {check.stdout}{check.stderr}")
            continue
        half = state(company)
        between += killed and half != old and half != new
        in_orders += killed and half["TUOTE"] == new["TUOTE"] and any(
            old[t] != half[t] != new[t] for t in ("MT", "MTRIVI", "WINOT", "WINOTRI"))
        for t in KEYS:
            if t in HEADERS:
                continue  # summed from rows in whatever state they were
            for key, row in half[t].items():
                if not known(t, row, (old[t][key], new[t][key], again[t][key])):
                    problems.append(f"kill {n}: {t} {key} is neither old nor new: {row}")
        done = told(company)
        lines += len(done)
        for number in done:
            if half["TUOTE"][(number,)] != new["TUOTE"][(number,)]:
                problems.append(f"kill {n}: the log tells of product {number}, which is old")
        if start(company).wait() != 0:
            problems.append(f"kill {n}: the second run failed")
        done = state(company)
        for t in KEYS:
            for key, row in done[t].items():
                if row != new[t][key] and row != again[t][key] and not (
                        t == "MT" and summed(key[0], row, done["MTRIVI"])):
                    problems.append(f"kill {n}: {t} {key} ends as {row}, uninterrupted {new[t][key]}")
    for line in problems[:20]:
        print(line)
    print(f"{args.kills} kills, {between} of them in the middle of the work, {in_orders} within the orders, "
          f"{lines} log lines held against their products; a run takes {took:.1f} s")
    if not problems:
        shutil.rmtree(folder)
    print(f"{0 if problems else 1} passed, {1 if problems else 0} failed")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
