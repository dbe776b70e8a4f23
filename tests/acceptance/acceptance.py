#!/usr/bin/env python3
"""Runs random companies through the real programs and compares every cell with model.py.

usage: acceptance.py BIN_DIR [--seeds FIRST COUNT] [--products N] [--orders N] [--keep]

For each seed: a random company is imported with zavdb, random definitions are saved, taksavaihe runs
them unattended, every table is exported again and compared with what the model says."""

import argparse
import collections
import csv
import datetime
import glob
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

import model
from model import f32

DICTIONARIES = os.path.join(os.path.dirname(__file__), "..", "..", "data", "dictionary")


def load_layouts():
    layouts = {}
    for folder in ("tables", "catalogue"):
        for name in os.listdir(os.path.join(DICTIONARIES, folder)):
            table, fields = None, []
            for line in open(os.path.join(DICTIONARIES, folder, name), encoding="utf-8"):
                w = line.split()
                if w[:1] == ["table"]:
                    table = w[1]
                elif w[:1] == ["field"]:
                    fields.append((w[2], w[3].split(":")[0], int(w[6]), w[7]))
            layouts[table] = fields
    return layouts


LAYOUTS = load_layouts()
# The ODBC driver that loads the embedded engine's tables beside its own SQLite.
SQLITE_DRIVER = next(iter(glob.glob("/usr/lib/*/odbc/libsqlite3odbc.so")), "libsqlite3odbc.so")
# Change log lines that the model also writes: those with amounts, counts or product numbers.
MODELLED = re.compile(r"Tuote: |(Asiakas|As\.ryhmä|Webas\.ryhmä) \d|Kampanja: | \( \d+ rivi\)|Määräale |"
                      r"Tuotetiedot muutettu|tilaus \d+ ohitetaan|Verkkokauppa -valinta poistettiin|.*;Tuote |Huomaa: tuotetta |Huomaa: määräalennus ")
TEXT = ("string", "memo", "date", "time", "timestamp", "raw", "varbinary")


def parse(table, row):
    out = {}
    for name, kind, stored, _ in LAYOUTS[table]:
        cell = row[name]
        if kind == "float":
            out[name] = f32(float(cell)) if stored == 4 else float(cell)
        else:
            out[name] = cell if kind in TEXT else int(cell or 0)
    return out


def shown(v):
    return repr(v) if isinstance(v, float) else str(v)


def write(name, text):
    with open(name, "w", encoding="utf-8") as f:
        f.write(text)


class Company:
    def __init__(self, bins, folder):
        self.bins, self.folder = bins, folder
        self.env = dict(os.environ, XDG_CONFIG_HOME=os.path.join(folder, "config"),
                        QT_QPA_PLATFORM="offscreen")
        self.data = os.path.join(folder, "data")
        self.home = self.data  # the company's data folder during the run
        self.run_env = self.env
        self.program = os.path.join(folder, "taksavaihe")
        shutil.copy(os.path.join(bins, "taksavaihe"), self.program)

    def reach_through_shops_engine(self):
        """The same company for the run, but in a folder without a database file: its records are
        reached through the call interface of the shops' engine (a fake client library), its SQL
        through the ODBC driver manager."""
        self.home = os.path.join(self.folder, "shop")
        config = os.path.join(self.folder, "shop-config")
        os.makedirs(self.home)
        os.makedirs(os.path.join(config, "Taksavaihe"))
        write(os.path.join(config, "Taksavaihe", "aliases.ini"),
              f"[Aliases]\nK\\PhysicalName={self.home}\n")
        write(os.path.join(self.folder, "databases"), f"K\t{self.data}\n")
        write(os.path.join(self.folder, "odbc.ini"),
              f"[K]\nDriver={SQLITE_DRIVER}\nDatabase={self.data}/YRITYS.ZDB\n"
              f"LoadExt={self.bins}/zavsql.so\nTimeout=10000\n")
        self.run_env = dict(self.env, XDG_CONFIG_HOME=config,
                            FAKE_CLIENT_DATABASES=os.path.join(self.folder, "databases"),
                            TAKSAVAIHE_CLIENT_LIBRARY=os.path.join(self.bins, "fake_client.so"),
                            ODBCINI=os.path.join(self.folder, "odbc.ini"))

    def zavdb(self, *args, check=True, env=None):
        r = subprocess.run([os.path.join(self.bins, "zavdb"), *args], env=env or self.env, text=True,
                           capture_output=True)
        if check and r.returncode:
            raise SystemExit(f"zavdb {args}: {r.returncode}: {r.stderr}")
        return r

    def fill(self, table, rows):
        if not rows:
            return
        name = os.path.join(self.folder, table + ".csv")
        columns = sorted({k for r in rows for k in r})
        with open(name, "w", newline="", encoding="utf-8") as f:
            w = csv.writer(f)
            w.writerow(columns)
            for r in rows:
                w.writerow([shown(r.get(c, "")) for c in columns])
        self.zavdb("import", "K", table, name, "--replace")

    def read(self, table, env=None):
        name = os.path.join(self.folder, table + "_out.csv")
        self.zavdb("export", "K", table, name, env=env)
        with open(name, newline="", encoding="utf-8") as f:
            return [parse(table, r) for r in csv.DictReader(f)]


def money(r):
    return r.choice([0.0, round(r.uniform(0.05, 900), 2), round(r.uniform(0.05, 90), 2),
                     r.uniform(0.01, 300), round(r.uniform(1, 50)) - 0.05, 0.125, 2.675, 1.005])


def make_company(r, products, orders):
    t = {}
    t["ALVKANTA"] = [{"luokka": c, "Selite": f"Alv {p}", "Prosentti": p}
                     for c, p in ((1, 24.0), (2, 14.0), (3, 10.0), (5, 25.5), (6, 24.0), (7, 0.0),
                                  (90, 13.7), (200, 14.5))]
    vat = lambda: r.choice([0, 1, 1, 1, 2, 3, 5, 6, 7])
    t["ASRYHMA"] = [{"Nro": n, "Nimi": f"Ryhmä {n}"} for n in (1, 2, 3, 4)]
    t["ASIAKAS"] = [{"Asiakas": n, "Ryhma": r.randint(0, 5), "Nimi": f"Asiakas {n}"}
                    for n in range(1, 30)]
    t["TRYHMA"] = [{"Nro": n, "Nimi": f"Tuoteryhmä {n}", "vero": vat(), "Alv2": vat(),
                    "ostovero": vat()} for n in range(1, 25)]
    t["MAARAALE"] = [{"Numero": n, "Nimi": f"Kimppa {n}", "Arvo": f32(money(r)),
                      "Ostohinta": money(r), "Loppu": r.choice(["", "2024-06-30", "2024-07-01",
                                                              "2025-01-01"])} for n in range(1, 15)]
    numbers = set()
    while len(numbers) < products:
        n = r.choice(["{:06d}", "T{}", "Ä{}", "A-{}", "R {}", "K/{}", "t{}", "64{:011d}"]).format(r.randint(1, 10 ** 6))
        numbers |= {n, n.swapcase()} if r.random() < 0.3 else {n}
    numbers = sorted(sorted(numbers), key=lambda x: r.random())
    t["TUOTE"] = []
    for n in numbers:
        p = {f: money(r) for f in model.LEVEL_FIELDS + ["KESKIHINTA", "VIIMOSTOHINTA", "ANNOSHINTA"]}
        if r.random() < 0.03:
            p["HINTA"] = -p["HINTA"]
        p.update(NUMERO=n, NIMI="Tuote " + n, RYHMA=r.randint(1, 24), PAARYHMA=r.randint(1, 5),
                 AliRyhma=r.randint(0, 40), LVV=vat(), Alv2=vat(), OSTOVERO=vat(),
                 HRKPL=r.choice([0, 0, 1, 3]), Verkkokauppa=r.choice([0, 1]),
                 maaraAle=r.choice([0, 0, 0, r.randint(1, 16)]))
        t["TUOTE"].append(p)
    some = lambda k: [r.choice(numbers + ["EIOLE"]) for _ in range(k)]
    t["HR"] = [{"Tyyppi": r.choice([1, 1, 2]), "Tuote": n, "Maara": 2.0, "TulPvm": "2024-01-05",
                "TulAika": 5, "H3": 4.5, "MaaraAle": "x", "MaaraAleHinta": 3.0, "Pantti": 0.2}
               for n in sorted(set(some(products // 4)))]
    t["MYYMALAHINNAT"] = [
        dict({f"Hinta{i}": money(r) for i in range(1, 10)}, Myymala=m, Tuote=n,
             **{f"Hinta{i}Alv0": money(r) for i in range(1, 10)})
        for m in (1, 2, 3) for n in sorted(set(some(products // 3)))]
    t["ASALE"] = [{"AsiakasNumero": r.randint(0, 30) if r.random() < .5 else r.randint(1, 5),
                   "Tuote": n, "Hinta": money(r), "Prosentteina": r.choice([0, 0, 0, 1]),
                   "Tyyppi": r.choice([1, 1, 1, 2]), "Maara": r.choice([0.0, 1.0, 2.5]),
                   "AsikasTyyppi": r.choice([0, 1, 2]), "OstoHinta": f32(money(r)),
                   "OstohintaLahtoinen": r.choice([0, 0, 0, 1]), "HintaAlv0": money(r)}
                  for n in some(products)]
    t["KAMPPANJA"] = [{"Tuote": n, "RiviNro": r.randint(1, 3), "Myyntihinta": f32(money(r)),
                       "Ostohinta": money(r), "Prosentti": r.choice([0, 0, 1]),
                       "Loppu": r.choice(["", "2024-08-31", "2024-09-01", "2025-01-01"])}
                      for n in some(products // 2)]
    # Rows that share their update's key: another period, a percentage beside a price, an ended
    # campaign, the price that another row is about to get, and rows equal in every column.
    for rows, start, end, percent, price in (
            (t["ASALE"], "Alkaa", "Loppuu", "Prosentteina", "Hinta"),
            (t["KAMPPANJA"], "Alku", "Loppu", "Prosentti", "Myyntihinta")):
        for row in r.sample(rows, len(rows) // 2):
            twin = dict(row, **r.choice([
                {}, {percent: 1 - row[percent]}, {start: "2024-05-01", end: "2024-08-31"},
                {start: "2024-10-01", end: "2025-06-30"}, {"Tuote": row["Tuote"].swapcase()}]))
            if r.random() < 0.8:
                twin[price] = r.choice([f32(money(r)), f32(round(row[price] * 1.0120967741935485, 2))])
            rows.append(twin)
    t["VAKIOLASKUTUS"] = [{"Id": i + 1, "Asiakas": r.randint(1, 9), "Tuote": n, "ahinta": money(r),
                           "Yhteensa": money(r), "ostohinta": money(r), "ahintaalv0": money(r)}
                          for i, n in enumerate(some(products // 3))]
    t["MT"], t["MTRIVI"], t["WINOT"], t["WINOTRI"] = [], [], [], []
    for o in range(1, orders + 1):
        date = lambda: r.choice(["", "2024-08-31", "2024-09-01", "2024-10-15"])
        t["MT"].append({"Numero": o, "Asiakas": r.randint(1, 29), "Toimitustila": r.randint(0, 5),
                        "Toimituspaiva": date(), "Veloitustapa": r.choice([0, 1, 2, 4, 14, 16, 21, 33]),
                        "Summa": money(r), "Kate": 1.0, "KateAlv0": 2.0, "SummaAlv0": money(r)})
        t["WINOT"].append({"TilausNro": o, "Tila": r.randint(0, 6), "Summa": money(r)})
        for row in range(1, r.randint(1, 8)):
            qty = r.choice([1.0, 2.0, -1.0, 0.5, 12.0, round(r.uniform(0, 20), 3)])
            off = r.choice([0.0, 0.0, 10.0, 50.0, 33.3, 100.0, 150.0, -5.0])
            gross = money(r)
            cost = r.choice([money(r), gross])
            t["MTRIVI"].append({
                "TilausNro": o, "RiviNro": row, "Tuote": r.choice(numbers), "Maara": qty,
                "Alennus": off, "Ahinta": gross, "Netto": round(gross * qty, 2),
                "AhintaAlv0": round(gross / 1.24, 4), "Ostohinta": f32(cost),
                "OstohintaAlv0": cost / 1.24, "Kate": r.choice([0.0, 1.5]), "KateAlv0": 0.25,
                "Verokanta": vat(), "OstoVero": vat(), "Toimitettava": r.choice([0.0, qty, qty]),
                "RakenneEmo": int(r.random() < .1), "PakettiLapsi": int(r.random() < .1),
                "OnVariKokoEmo": int(r.random() < .1), "PakettiEmo": int(r.random() < .1)})
            t["WINOTRI"].append({
                "TilausNro": o, "RiviNro": row, "Tuote": r.choice(numbers), "Maara": qty,
                "Alennus": f32(r.choice([0.0, 12.5, 33.3, 120.0, -5.0])), "OstoHinta": cost,
                "OstoHintaAlv0": cost / 1.24, "Summa": cost * qty, "AlvLuokka": vat(),
                "Tulematta": r.choice([0.0, qty]), "VariKokoLapsi": int(r.random() < .2)})
    t["WEBKLIITOS"] = []
    return t


def make_definition(r):
    flag = lambda p=0.5: str(int(r.random() < p))
    v = {"LahdeAlvLuokkaEdit": r.choice("1111123607"), "KohdeAlvLuokkaEdit": r.choice(["5", "5", "5", "5", "5", "2", "7", "90"]),
         "PyoristysRadioGroup": str(r.randint(0, 4)), "PyoristysSaantoRadioGroup": str(r.randint(0, 2)),
         "PriceChangeLimitEdit": r.choice(["0", "0", "5", "12.5"])}
    coefficients = ["1", "1", "1.0120967741935485", "1.00813008", "1.008849557522124", "0.95", "1.1",
                    repr(r.uniform(0.9, 1.25))]
    for c in model.COEFFICIENTS:
        if r.random() < 0.8:
            v[c] = r.choice(coefficients)
    for n in range(1, 10):
        v[f"HintaLahde{n}"] = r.choice(["0", model.PRICE_COLUMNS[n - 1], model.PRICE_COLUMNS[n - 1],
                                        r.choice(model.PRICE_COLUMNS), "hinta10", ""])
        v[f"SailytaAlv0_CheckBox{n}"] = flag(0.3)
    for c in ("asiakashinnasto", "WebKauppaAsHinCheckBox", "Kampanjat", "MaaraAle", "cbVakioLaskutus",
              "MtCheckBox", "OtCheckBox", "SailytaAlv0_CheckBoxMT", "SailytaAlv0_CheckBoxOT",
              "DoNotUpdateCustomerPricelistVAT0", "Eiverkkokauppaa", "VieHr", "Tuoteloki",
              "chkCheckWebstoreCompliantProductIds"):
        v[c] = flag()
    v["Tuotteet"] = flag(0.9)
    v["MTToimPaivaRajaus"] = r.choice(["", "", "2024-09-01"])
    v["TurvarajaTuotteet"] = r.choice(["", "", "", "1000", "20", "3"])
    v["TurvarajaProsentti"] = r.choice(["", "", "", "0", "1.3", "10", "50"])
    v["Muutospaiva"] = r.choice(["", "", "2024-09-01", "2025-01-01", "2026-01-15"])
    v = {k: x for k, x in v.items() if x or not k.startswith(("Turva", "Muutosp")) or r.random() < 0.3}
    v["AsRyhmaCheckList"] = r.choice(["", "", "1", "2,3", "4,9", "1,2,9"])
    for kind, top in (("Aliryhma", 40), ("Tuoteryhma", 24), ("Paaryhma", 5)):
        v[kind + "CheckBox"] = flag(0.25)
        v[kind + "AlkuEdit"] = str(r.choice([0, 0, r.randint(1, top)]))
        v[kind + "LoppuEdit"] = str(r.choice([0, 0, r.randint(1, top)]))
        v["edt" + kind + "Ignore"] = r.choice(["", "", f"{r.randint(1, top)},,0{r.randint(1, top)},",
                                               f"{r.randint(1, top)}, {r.randint(1, top)},x"])
    if r.random() < 0.3:  # mistakes: refused where the run would use them
        control, value = r.choice([
            ("LahdeAlvLuokkaEdit", "77"), ("LahdeAlvLuokkaEdit", None), ("KohdeAlvLuokkaEdit", "1000"),
            ("KohdeAlvLuokkaEdit", "200"), ("Hinta1Edit", "1.0092592592592593"), ("Hinta2Edit", "-1"),
            ("OstohintaEdit", "0"), ("ViimOstohintaEdit", "1,01"), ("PriceChangeLimitEdit", "x"),
            ("MTToimPaivaRajaus", "1.9.2024"), ("AsRyhmaCheckList", "1;2"), ("AsRyhmaCheckList", "9"),
            ("Kampanjat", "on"), ("TurvarajaTuotteet", "x"), ("TurvarajaProsentti", "1,5"),
            ("Muutospaiva", "1.9.2024"), ("Muutospaiva", "2099-01-01")])
        v.pop(control, None)
        if value is not None:
            v[control] = value
    return v


def compare(table, got, want, stamps):
    """Returns a line per difference; rows are matched in sorted order."""
    fields = [f for f in LAYOUTS[table]]
    time_cells = {f[0] for f in fields if f[1] in ("time", "timestamp")}
    order = lambda row: tuple(str(row[f[0]]) for f in fields if f[1] != "float"
                              and f[0] not in time_cells) + tuple(
        row[f[0]] for f in fields if f[1] == "float")
    for row in want:
        for name, kind, _, _ in fields:
            row.setdefault(name, "" if kind in TEXT else 0.0 if kind == "float" else 0)
    got, want = sorted(got, key=order), sorted(want, key=order)
    out = [] if len(got) == len(want) else [f"{table}: {len(got)} rows, {len(want)} expected"]
    for g, w in zip(got, want):
        for name, kind, _, _ in fields:
            if w[name] is model.NOW:
                if not stamps[0] <= g[name][-8:] <= stamps[1]:
                    out.append(f"{table}.{name}: {g[name]} is no time of the run")
            elif g[name] != w[name]:
                key = [g[f[0]] for f in fields[:3]]
                out.append(f"{table} {key} {name}: {g[name]!r}, expected {w[name]!r}")
    return out


def random_company(seed, args):
    """Returns a random company with saved definitions and a batch list, the definitions, and the company's
    tables."""
    r = random.Random(seed)
    c = Company(args.bins, tempfile.mkdtemp(prefix=f"acceptance{seed}-"))
    without = ["--without", "MYYMALAHINNAT"] if r.random() < 0.15 else []
    c.zavdb("create", "K", c.data, *without)
    tables = make_company(r, args.products, args.orders)
    if without:
        del tables["MYYMALAHINNAT"]
    for name, rows in tables.items():
        c.fill(name, rows)
    names = [name for name in LAYOUTS if not (without and name == "MYYMALAHINNAT")]
    definitions = [make_definition(r) for _ in range(r.choice([1, 2, 3, 4]))]
    if args.engine == "shops":
        c.reach_through_shops_engine()
    os.makedirs(os.path.join(c.home, "MAARITYS"), exist_ok=True)
    with open(os.path.join(c.home, "MAARITYS", "AlvMuutosLomake.INI"), "w", encoding="utf-8") as f:
        for i, d in enumerate(definitions):
            f.write(f"[Määritys {i}]\r\nSelite=testi\r\n" + "".join(f"{k}={v}\r\n" for k, v in d.items()))
    with open(os.path.join(c.folder, "ALVMUUTOS.INI"), "w", encoding="utf-8") as f:
        f.write("[ASETUKSET]\r\n" + "".join(f"maar{i + 1}=Määritys {i}\r\n"
                                           for i in range(len(definitions))))
    return c, definitions, names


def one(seed, args):
    c, definitions, names = random_company(seed, args)
    before = {name: c.read(name) for name in names}
    start = datetime.datetime.now()
    p = subprocess.run([c.program, "K", "/E"], env=c.run_env, capture_output=True, text=True, timeout=600)
    end = datetime.datetime.now()
    stamps = (start.strftime("%H:%M:%S"), end.strftime("%H:%M:%S"))
    want_status, refusals, expected_log, mark = 0, [], [], False
    for d in definitions:
        run = model.Run(before, model.Definition(d), start.strftime("%Y-%m-%d"))
        try:
            run.run()
            mark = True
            expected_log += run.log
        except model.Refused as e:
            refusals.append(e.args[0])
            want_status = 1
        if run.failed:
            want_status = 1
    problems = []
    if p.returncode != want_status:
        problems.append(f"exit status {p.returncode}, expected {want_status}: {p.stderr.strip()}")
    log_name = os.path.join(c.home, "ALVMUUTOS.LOG")
    log = open(log_name, encoding="utf-8").read() if os.path.exists(log_name) else ""
    for why in [x for x in refusals if not isinstance(x, str)]:
        if not any("  Määrittelyä ei ajeta: " in x and all(f"{c}={v} (" in x for c, v in why)
                   for x in log.split("\n")):
            problems.append(f"log lacks the refusal of {why!r}")
    logged = collections.Counter(line.partition("  ")[2] for line in log.split("\n"))
    expected = collections.Counter([x for x in refusals if isinstance(x, str)] + expected_log)
    problems += [f"log lacks: {x!r}" for x in expected - logged]
    problems += [f"log has besides: {x!r}" for x in logged - expected if MODELLED.match(x)]
    marks = [x for x in c.read("INI") if x["Avain"] == "20240901"]
    if len(marks) != int(mark):
        problems.append(f"{len(marks)} run marks, expected {int(mark)}")
    for name in before:
        if name != "INI":
            problems += compare(name, c.read(name), before[name], stamps)
    if args.engine == "shops":  # what the records' own interface gives
        for name in ("TUOTE", "MTRIVI", "X$Field"):
            if c.read(name, env=c.run_env) != c.read(name):
                problems.append(f"{name} differs when it is read through the call interface")
    check = c.zavdb("check", "K", check=False)
    if check.returncode:
        problems.append("zavdb check: " + check.stdout + check.stderr)
    if problems:
        print(f"seed {seed} ({c.folder}):")
        for line in problems[:12]:
            print("   ", line)
        print(f"    {len(problems)} problems in all; definitions: {definitions}")
    elif not args.keep:
        shutil.rmtree(c.folder)
    return not problems


def main():
    a = argparse.ArgumentParser()
    a.add_argument("bins")
    a.add_argument("--seeds", nargs=2, type=int, default=(1, 6), metavar=("FIRST", "COUNT"))
    a.add_argument("--products", type=int, default=60)
    a.add_argument("--orders", type=int, default=40)
    a.add_argument("--engine", choices=("embedded", "shops"), default="embedded",
                   help="how the change reaches the company")
    a.add_argument("--keep", action="store_true")
    args = a.parse_args()
    results = [one(s, args) for s in range(args.seeds[0], sum(args.seeds))]
    print(f"{sum(results)} passed, {len(results) - sum(results)} failed")
    sys.exit(0 if all(results) else 1)


if __name__ == "__main__":
    main()
