#!/usr/bin/env python3
"""Kills a whole run at random moments and resumes it.

usage: crash.py BIN_DIR [--kills N] [--seed S] [--products N] [--orders N]

After each kill -9 the company must open and pass `zavdb check`, and every product in the log must be new;
the next start must resume the run and leave in every table what an uninterrupted run leaves, times of
change aside. Every second kill waits until the run has reached the orders; every third resumed run is
killed as well. Then the run is undone exactly, the undo is killed and started again: every table must be as
before the run, times of change included."""

import argparse
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
CLOCK = {"MUUTETTUPVM", "muutettutime", "MuutosPvm", "MuutosKlo", "muutosKlo", "MuutosAika", "Muutettu", "TulPvm"}
TABLES = sorted(set(LAYOUTS) - {"INI"})  # the settings hold the run mark, a time


def definition():
    d = {"Tuoteloki": "1", "LahdeAlvLuokkaEdit": "1", "KohdeAlvLuokkaEdit": "5", "OstohintaEdit": "1.0120967741935485",
         "MtCheckBox": "1", "OtCheckBox": "1", "asiakashinnasto": "1", "Kampanjat": "1", "MaaraAle": "1",
         "cbVakioLaskutus": "1", "chkCheckWebstoreCompliantProductIds": "1", "MtKerroinEdit": "1.0120967741935485"}
    for n, column in enumerate(acceptance.model.PRICE_COLUMNS, 1):
        d[f"Hinta{n}Edit"], d[f"HintaLahde{n}"] = "1.0120967741935485", column
    return d


def state(company):
    """The rows of every table, without times of change."""
    return {t: sorted(tuple(repr(v) for k, v in r.items() if k not in CLOCK) for r in company.read(t)) for t in TABLES}


def everything(company):
    """The rows of every table."""
    return {t: sorted(tuple(map(repr, r.values())) for r in company.read(t)) for t in sorted(LAYOUTS)}


def undo(company, delay):
    """Undoes run 1 exactly; the first attempt is killed after the delay. Returns the exit status."""
    command = [company.bins + "/zavdb", "undo", "K", "1", "--exact"]
    first = subprocess.Popen(command, env=company.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(delay)
    first.send_signal(signal.SIGKILL)
    if first.wait() == 0:
        return 0
    again = company.zavdb(*command[1:], check=False)
    return 0 if "undone already" in again.stderr else again.returncode  # killed after its last change


def told(company):
    """Numbers of the products that the change log lists as converted."""
    try:
        with open(os.path.join(company.data, "ALVMUUTOS.LOG"), encoding="utf-8") as f:
            lines = [line.partition("  Tuote: ")[2] for line in f if "  Tuote: " in line]
    except FileNotFoundError:
        return []
    return [line[:line.index(" VANHA")] for line in lines]


def start(company):
    return subprocess.Popen([company.program, "K", "/E"], env=company.env,
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
    old, before = state(company), everything(company)
    began = time.monotonic()
    p = start(company)
    reaches_orders(company, p)
    at_orders = time.monotonic() - began
    if p.wait() != 0:
        raise SystemExit("the uninterrupted run failed")
    took = time.monotonic() - began
    new = state(company)
    new_products = {r["NUMERO"]: r["LVV"] for r in company.read("TUOTE")}
    problems, between, lines = [], 0, 0
    for n in range(args.kills):
        shutil.rmtree(company.data)
        shutil.copytree(fresh, company.data)
        for again in range(2 if n % 3 == 2 else 1):
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
            half = state(company)
            between += killed and half != old and half != new
            products = {row["NUMERO"]: row["LVV"] for row in company.read("TUOTE")}
            for number in told(company):
                lines += 1
                if products[number] != new_products[number]:
                    problems.append(f"kill {n}: the log lists product {number}, which is old")
        status = start(company).wait()
        if status not in (0, 3):  # 3: it was killed after its last change
            problems.append(f"kill {n}: the resumed run ended with {status}")
        done = state(company)
        for t in TABLES:
            if done[t] != new[t]:
                left = [row for row in done[t] if row not in new[t]]
                problems.append(f"kill {n}: {t} ends otherwise than uninterrupted, first {left[:1]}")
        if undo(company, r.uniform(0, took / 2)) != 0:
            problems.append(f"kill {n}: the undo failed")
        taken = everything(company)
        problems += [f"kill {n}: {t} is not as before the run after the undo" for t in before if taken[t] != before[t]]
    for line in problems[:20]:
        print(line)
    print(f"{args.kills} kills, {between} times in the middle of the work, {lines} log lines compared with their "
          f"products; a run takes {took:.1f} s")
    if not problems:
        shutil.rmtree(folder)
    print(f"{0 if problems else 1} passed, {1 if problems else 0} failed")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
