"""An independent model of the change's arithmetic and log lines, in plain Python on dictionaries.

It shares nothing with the program: it computes from exported tables what a definition must leave, and
the driver compares every cell. Amounts are doubles, rounded once per operation; a single-precision
field rounds its value (see f32)."""

import datetime
import decimal
import math
import re
import struct

PRICE_COLUMNS = ["hinta", "kaksoishinta"] + [f"hinta{n}" for n in range(3, 10)]
LEVEL_FIELDS = ["HINTA", "KAKSOISHINTA"] + [f"HINTA{n}" for n in range(3, 10)]
COEFFICIENTS = [f"Hinta{n}Edit" for n in range(1, 10)] + [
    "OstohintaEdit", "ViimOstohintaEdit", "MtKerroinEdit", "OtKerroinEdit"]
NOW = object()  # stands for "the time of the run" in a cell


def f32(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]


def cash(v):
    cents = round(abs(v) * 100)
    digit = cents % 10
    cents += {0: 0, 1: -1, 2: -2, 3: 2, 4: 1, 5: 0, 6: -1, 7: -2, 8: 2, 9: 1}[digit]
    return math.copysign(cents / 100, v) if cents else 0.0


def round_price(v, step, rule):
    n = [1000, 100, 20, 10, 10000][step]
    if rule == 1:
        return math.floor(v * n + 1 - 0.000999999) / n
    if rule == 2:
        return math.floor(v * n + 0.000999999) / n
    if step == 2:
        return cash(v)
    p = [1000, 100, None, 10, 10000][step]
    return round(v * p) / p


def sql_round(v, d):
    p = float(10 ** d)
    scaled = abs(v * p)
    whole = math.floor(scaled)
    return math.copysign(whole + 1 if scaled - whole >= 0.5 else whole, v) / p


def half_away(v, d):
    unit = {1: 0.1, 2: 0.01, 3: 0.001, 4: 0.0001}[d]
    q = v / unit
    return math.trunc(q + 0.5 if v >= 0 else q - 0.5) * unit


def bankers(v, d):
    whole = float(math.trunc(v)) if d > 0 else 0.0
    p = 10.0 ** d
    return whole + round((v - whole) * p) / p


def fixed(v, d):
    """An amount of a log line: d decimals, halves of the exact value away from zero."""
    return str(decimal.Decimal(v).quantize(decimal.Decimal(1).scaleb(-d), decimal.ROUND_HALF_UP))


def euros(before, after):
    return f"{fixed(before, 4)}€  -> {fixed(after, 4)}€ "


def cells(pattern, *amounts):
    """Fills % signs with amounts of two decimals in columns of five."""
    for v in amounts:
        pattern = pattern.replace("%", fixed(v, 2).rjust(5), 1)
    return pattern


class Refused(Exception):
    """With the run's own message, or with the (control, value) pairs that refuse the definition."""


PATTERNS = {"Class": r"[0-9]{1,3}", "Number": r"[+-]?[0-9]+(\.[0-9]+)?(e-?[0-9]+)?", "Date": r"(\d{4}-\d\d-\d\d)?",
            "Groups": r"([0-9]+(,[0-9]+)*)?", "Check": "[01]", "Most": r"[0-9]{0,9}",
            "Percent": r"([0-9]+(\.[0-9]+)?)?"}


def kind_of(control):
    if control.endswith("AlvLuokkaEdit"):
        return "Class"
    if control in COEFFICIENTS or control == "PriceChangeLimitEdit":
        return "Number"
    return {"MTToimPaivaRajaus": "Date", "Muutospaiva": "Date", "AsRyhmaCheckList": "Groups",
            "TurvarajaTuotteet": "Most", "TurvarajaProsentti": "Percent"}.get(
        control, "Check" if control in ("Kampanjat", "MaaraAle", "VieHr") else "Text")


class Definition:
    """The state of the form after a load: defaults, given values, validation, normalisation."""

    def __init__(self, values):
        self.bad = [(k, v) for k, v in values.items()
                    if not re.fullmatch(PATTERNS.get(kind_of(k), ".*"), v)]
        given = values
        values = {k: v for k, v in values.items() if (k, v) not in self.bad}
        self.bad += [(k, "") for k in ("LahdeAlvLuokkaEdit", "KohdeAlvLuokkaEdit") if k not in given]
        g = lambda key, default: values.get(key, default)
        self.values = values
        self.level = []
        coef = {c: float(g(c, "1")) for c in COEFFICIENTS}
        for n in range(1, 10):
            source = g(f"HintaLahde{n}", "0").strip()
            keep = g(f"SailytaAlv0_CheckBox{n}", "0") == "1"
            if source not in PRICE_COLUMNS:
                source, keep, coef[f"Hinta{n}Edit"] = "0", False, 1.0
            self.level.append([source, keep])
        for c, k in coef.items():
            if abs(k - 1.008130081300813) <= 1e-6:
                coef[c] = 1.0120967741935485
            elif abs(k - 1.008849557522124) <= 1e-6:
                coef[c] = 1.1008771929824561
            elif abs(k - 1.0092592592592593) <= 1e-7:
                coef[c] = 0.0
        self.coef = coef
        self.k = [coef[f"Hinta{n}Edit"] for n in range(1, 10)]
        self.ko = coef["OstohintaEdit"]
        self.kv = coef["ViimOstohintaEdit"]
        self.s = int(g("LahdeAlvLuokkaEdit", "0") or 0)
        self.t = int(g("KohdeAlvLuokkaEdit", "0") or 0)
        self.limit = float(g("PriceChangeLimitEdit", "0"))
        self.step = int(g("PyoristysRadioGroup", "1"))
        self.rule = int(g("PyoristysSaantoRadioGroup", "0"))
        self.day = g("Muutospaiva", "")
        self.most = g("TurvarajaTuotteet", "")
        self.percent = g("TurvarajaProsentti", "")
        self.groups = [int(x) for x in g("AsRyhmaCheckList", "").split(",") if x]

    def refusals(self, rates, groups):
        """What must not be run unattended, as (control, value)."""
        out = list(self.bad)
        if self.s != 0 and self.s not in rates:
            out.append(("LahdeAlvLuokkaEdit", str(self.s)))
        if self.t > 127 and self.on("MtCheckBox"):
            out.append(("KohdeAlvLuokkaEdit", str(self.t)))
        products = self.on("Tuotteet", "1")
        dependents = any(self.on(c) for c in ("asiakashinnasto", "Kampanjat", "MaaraAle",
                                              "cbVakioLaskutus"))
        used = {f"Hinta{n}Edit" for n in range(1, 10) if products and self.level[n - 1][0] != "0"}
        used |= {"Hinta1Edit"} if dependents else set()
        used |= {"OstohintaEdit"} if products or dependents else set()
        used |= {"ViimOstohintaEdit"} if products else set()
        out += [(c, self.values[c]) for c in used if self.coef[c] <= 0]
        if self.on("asiakashinnasto") and self.groups and not set(self.groups) & groups:
            out.append(("AsRyhmaCheckList", self.values["AsRyhmaCheckList"]))
        return out

    def on(self, key, default="0"):
        return self.values.get(key, default) == "1"

    def number(self, key):
        return int(self.values.get(key, "0") or 0)


def selected(d, product):
    for kind, control, ignore in (("AliRyhma", "Aliryhma", "edtAliryhmaIgnore"),
                                  ("RYHMA", "Tuoteryhma", "edtTuoteryhmaIgnore"),
                                  ("PAARYHMA", "Paaryhma", "edtPaaryhmaIgnore")):
        if not d.on(control + "CheckBox"):
            continue
        a, last = d.number(control + "AlkuEdit"), d.number(control + "LoppuEdit")
        v = product[kind]
        if a and last and a != last:
            if not a <= v <= last:
                return False
        elif a or last:
            if v != (a or last):
                return False
        ignored = [int(x) for x in d.values.get(ignore, "").split(",") if x.strip().isdigit()]
        if v in ignored:
            return False
    return d.s in (product["LVV"], product["Alv2"], product["OSTOVERO"])


class Run:
    """Applies one definition to tables = {name: [row dict]} in place; log lines into self.log."""

    def __init__(self, tables, definition, today):
        self.tab, self.d, self.today = tables, definition, today
        self.log, self.failed = [], False
        self.rates = {}
        for row in tables["ALVKANTA"]:
            self.rates.setdefault(row["luokka"], row["Prosentti"])

    def factor(self, vat_class):
        return 1 + self.rates.get(vat_class, 0.0) / 100

    def price(self, n, v):
        """Program-side rounding with the coefficient of level n (0-based)."""
        new = self.d.k[n] * v
        return round_price(new, self.d.step, self.d.rule) if self.d.k[n] != 1.0 else new

    def run(self):
        d = self.d
        refusals = d.refusals(self.rates, {r["Nro"] for r in self.tab["ASRYHMA"]})
        if refusals:
            raise Refused(refusals)
        if d.day and datetime.datetime.now() < (datetime.datetime.fromisoformat(d.day)
                                                - datetime.timedelta(hours=9)):
            raise Refused("Olet vaihtamassa veroluokkaa, vaikka kuukausi ei ole vielä vaihtunut!")
        if d.t <= 0:
            raise Refused("Kohteen ALV -luokka on oltava > 0!")
        if d.t not in self.rates:
            raise Refused("Kohteen ALV -luokkaa ei ole olemassa!")
        if d.s == d.t:
            raise Refused("Lähteen ALV -luokka on sama kuin kohteen ALV -luokka!")
        if d.s != 0 and self.rates.get(d.s, 0.0) == self.rates[d.t]:
            raise Refused("Lähteen ALV -luokan prosentti on sama kuin kohteen ALV -luokan prosentti!")
        self.by_number = {p["NUMERO"]: p for p in self.tab["TUOTE"]}
        self.chosen = {n for n, p in self.by_number.items() if selected(d, p)}
        if d.most and len(self.chosen) > int(d.most):
            raise Refused([("TurvarajaTuotteet", d.most)])
        self.limited = self.beyond_limit() if d.percent and d.on("Tuotteet", "1") else set()
        self.failed = bool(self.limited)
        self.priced = self.chosen - self.limited
        if d.on("asiakashinnasto"):
            self.customer_price_lists()
        if d.on("Kampanjat"):
            self.campaigns()
        if d.on("cbVakioLaskutus"):
            self.recurring()
        if d.on("MaaraAle"):
            self.quantity_discounts()
        if d.on("Tuotteet", "1"):
            self.product_groups()
            self.store_prices()
            self.products()
        if d.on("MtCheckBox"):
            self.sales_orders()
        if d.on("OtCheckBox"):
            self.purchase_orders()
        if d.on("chkCheckWebstoreCompliantProductIds"):
            self.product_codes()

    def new_level(self, n, product):
        v = product[LEVEL_FIELDS[PRICE_COLUMNS.index(self.d.level[n][0])]]
        return self.price(n, v) if v >= self.d.limit else v

    def beyond_limit(self):
        """The selected products of which a price level would change by too many percents."""
        limited = set()
        levels = [n for n in range(9) if self.d.level[n][0] != "0"]
        for number in self.chosen:
            shown, beyond = [], False
            for n in levels:
                old, new = self.by_number[number][LEVEL_FIELDS[n]], self.new_level(n, self.by_number[number])
                text = f"{PRICE_COLUMNS[n]} {fixed(old, 3)} -> {fixed(new, 3)}"
                if old != 0:
                    change = (new - old) / abs(old) * 100
                    text += f" ({change:+.2f} %)"
                    beyond |= abs(change) > float(self.d.percent) + 1e-9 or (old > 0 and new <= 0)
                shown.append(text)
            if beyond:
                limited.add(number)
                self.log.append(f"Huomaa: tuotetta {number} ei muuteta, turvaraja {float(self.d.percent):g} % "
                                f"ylittyy: {', '.join(shown)}")
        return limited

    def customer_price_lists(self):
        d = self.d
        groups = {g for g in d.groups if any(r["Nro"] == g for r in self.tab["ASRYHMA"])}
        in_groups = {c["Asiakas"] for c in self.tab["ASIAKAS"] if c["Ryhma"] in groups}
        types = (1, 2) if d.on("WebKauppaAsHinCheckBox") else (1,)
        lines = []
        for r in self.tab["ASALE"]:
            if not (r["Tuote"] in self.priced and r["Tyyppi"] == 1 and not r["Prosentteina"]
                    and r["Hinta"] > 0 and not r["OstohintaLahtoinen"]):
                continue
            if groups and not ((r["AsikasTyyppi"] == 0 and r["AsiakasNumero"] in in_groups) or
                               (r["AsikasTyyppi"] in types and r["AsiakasNumero"] in groups)):
                continue
            old, purchase = dict(r), d.ko * r["OstoHinta"]
            r["Hinta"] = self.price(0, r["Hinta"])
            r["OstoHinta"] = f32(purchase)
            if not d.on("DoNotUpdateCustomerPricelistVAT0"):
                r["HintaAlv0"] = r["Hinta"] / self.factor(d.t)
            lines.append(
                f"{('Asiakas', 'As.ryhmä', 'Webas.ryhmä')[r['AsikasTyyppi']]} {r['AsiakasNumero']} tuote: "
                f"{r['Tuote']} määrä: {r['Maara']:g}  hinta: {euros(old['Hinta'], r['Hinta'])}  hintaalv0: "
                f"{euros(old['HintaAlv0'], r['HintaAlv0'])} ostohinta: {euros(old['OstoHinta'], purchase)}")
        if d.on("Tuoteloki"):
            self.log += lines + [f" ( {len(lines)} rivi)"]

    def campaigns(self):
        for r in self.tab["KAMPPANJA"]:
            if (r["Tuote"] in self.priced and not r["Prosentti"]
                    and (r["Loppu"] == "" or r["Loppu"] >= (self.d.day or "2024-09-01"))):
                price, purchase = self.price(0, r["Myyntihinta"]), self.d.ko * r["Ostohinta"]
                self.log.append(cells(f"Kampanja: {r['Tuote']} {r['RiviNro']}; %;%;%;%", r["Myyntihinta"], price,
                                      r["Ostohinta"], purchase))
                r["Myyntihinta"], r["Ostohinta"] = f32(price), purchase

    def recurring(self):
        for r in self.tab["VAKIOLASKUTUS"]:
            if r["Tuote"] in self.priced:
                old = r["ahinta"], r["Yhteensa"], r["ostohinta"]
                r["ahinta"], r["Yhteensa"] = self.price(0, r["ahinta"]), self.price(0, r["Yhteensa"])
                r["ostohinta"] = self.d.ko * r["ostohinta"]
                self.log.append(cells(f"Asiakas {r['Asiakas']}, tuote {r['Tuote']}%; %; %; %; %;%", old[0],
                                      r["ahinta"], old[1], r["Yhteensa"], old[2], r["ostohinta"]))
                r["MuutosPvm"], r["MuutosAika"] = self.today, NOW

    def quantity_discounts(self):
        used = {self.by_number[n]["maaraAle"] for n in self.chosen}
        of_limited = {self.by_number[n]["maaraAle"] for n in self.limited}
        for r in self.tab["MAARAALE"]:
            if r["Numero"] in used and (
                    r["Loppu"] == "" or r["Loppu"] >= (self.d.day or "2024-07-01")):
                price, purchase = self.price(0, r["Arvo"]), self.d.ko * r["Ostohinta"]
                self.log.append(f"Määräale {r['Nimi']} ( {r['Numero']} ) arvo: {fixed(r['Arvo'], 4)} -> "
                                f"{fixed(price, 4)} ostohinta: {fixed(r['Ostohinta'], 4)} -> {fixed(purchase, 4)}")
                r["Arvo"], r["Ostohinta"] = f32(price), purchase
                if r["Numero"] in of_limited:
                    self.log.append(f"Huomaa: määräalennus {r['Numero']} muutettiin, vaikka turvaraja ohitti "
                                    "sen tuotteita")

    def product_groups(self):
        first, last = self.d.number("TuoteryhmaAlkuEdit"), self.d.number("TuoteryhmaLoppuEdit")
        for field in ("vero", "Alv2", "ostovero"):
            for r in self.tab["TRYHMA"]:
                if r[field] == self.d.s and (not first or r["Nro"] >= first) and (
                        not last or r["Nro"] <= last):
                    r[field], r["MuutosPvm"], r["MuutosKlo"] = self.d.t, self.today, NOW

    def store_prices(self):
        if "MYYMALAHINNAT" not in self.tab:
            return
        d, f = self.d, self.factor(self.d.t)
        levels = [n for n in range(9) if d.level[n][0] != "0"]
        hit = {p["NUMERO"] for p in self.tab["TUOTE"] if p["LVV"] == d.s} - self.limited
        rows = [r for r in self.tab["MYYMALAHINNAT"] if r["Tuote"] in hit]
        if not levels or not rows:
            return
        if any(d.level[n][1] for n in levels) and d.step in (2, 3) and d.rule == 0:
            self.failed = True
            return
        for r in rows:
            for n in levels:
                gross, vat0 = f"Hinta{n + 1}", f"Hinta{n + 1}Alv0"
                if not d.level[n][1]:
                    r[vat0] = r[gross] / f
                    continue
                e = r[vat0] * f
                if d.step in (0, 1, 4):
                    r[gross] = sql_round(e, {0: 3, 1: 2, 4: 4}[d.step])
                else:
                    m = {2: 20, 3: 10}[d.step]
                    r[gross] = math.floor(e * m + 0.9999 if d.rule == 1 else e * m) / m
            r["Muutettu"] = NOW

    def products(self):
        d = self.d
        levels = [n for n in range(9) if d.level[n][0] != "0"]
        for number in [p["NUMERO"] for p in self.tab["TUOTE"] if p["NUMERO"] in self.priced]:
            p = self.by_number[number]
            old = dict(p)
            for n in levels:
                p[LEVEL_FIELDS[n]] = self.new_level(n, old)
            if d.ko != 1.0:
                p["KESKIHINTA"], p["ANNOSHINTA"] = d.ko * old["KESKIHINTA"], d.ko * old["ANNOSHINTA"]
            if d.kv != 1.0:
                p["VIIMOSTOHINTA"] = d.kv * old["VIIMOSTOHINTA"]
            for field in ("LVV", "Alv2", "OSTOVERO"):
                if old[field] == d.s:
                    p[field] = d.t
            p["MUUTETTUPVM"], p["muutettutime"] = self.today, NOW
            if not d.on("Eiverkkokauppaa") and p["Verkkokauppa"]:
                self.mark(number, "M")
            if d.on("Tuoteloki"):
                self.log.append(self.product_line(number, old, p, levels))
            if d.on("VieHr", "1") and p["HRKPL"] > 0:
                self.label(number, p["HRKPL"])

        self.log.append(f"Tuotetiedot muutettu ( {len(self.priced)} kpl)")

    def product_line(self, number, old, new, levels):
        line = f"Tuote: {number}"
        for n in levels:
            source = self.d.level[n][0]
            before = old[LEVEL_FIELDS[PRICE_COLUMNS.index(source)]]
            line += (f" VANHAHINTA(={source} ){n + 1}={fixed(before, 3)}, "
                     f"UUSIHINTA={fixed(new[LEVEL_FIELDS[n]], 3)}")
        for k, name, field in ((self.d.ko, "OSTOHINTA", "KESKIHINTA"), (self.d.kv, "VIIMOH", "VIIMOSTOHINTA")):
            if k != 1.0:
                line += f" VANHA{name}={fixed(old[field], 3)}, UUSI{name}={fixed(new[field], 3)}"
        return line

    def mark(self, number, letter):
        self.tab["WEBKLIITOS"].append({"taulu": "TUOTE", "Tunniste": number, "Tyyppi": letter,
                                       "MuutosPvm": self.today, "muutosKlo": NOW})

    def label(self, number, count):
        rows = [r for r in self.tab["HR"] if r["Tuote"] == number and r["Tyyppi"] == 1]
        if not rows:
            rows = [{"Tyyppi": 1, "Tuote": number}]
            self.tab["HR"] += rows
        for r in rows:
            r.update({f"H{i}": 0.0 for i in range(1, 10)})
            r.update(Maara=float(count), TulPvm="", TulAika=0, Voimassa="", Pantti=0.0, MaaraAle="",
                     MaaraAleHinta=0.0, MaaraAleKpl=0.0, MaaraAleHinPanttilla=0.0)

    def sales_orders(self):
        d = self.d
        dec = {0: 3, 1: 2, 2: 2, 3: 1, 4: 4}[d.step]
        km = d.coef["MtKerroinEdit"] if d.coef["MtKerroinEdit"] > 0 else 1.0
        ko = d.ko if d.ko > 0 else 1.0
        keep, limit = d.on("SailytaAlv0_CheckBoxMT"), d.values.get("MTToimPaivaRajaus", "")
        rows_of = {}
        for r in sorted(self.tab["MTRIVI"], key=lambda r: (r["TilausNro"], r["RiviNro"])):
            rows_of.setdefault(r["TilausNro"], []).append(r)
        for h in self.tab["MT"]:
            if h["Toimitustila"] > 3 or (limit and h["Toimituspaiva"] < limit):
                continue
            if h["Veloitustapa"] in (14, 16):
                self.log.append(f"tilaus {h['Numero']} ohitetaan ")
                continue
            special = h["Veloitustapa"] in (4, 5, 7, 8, 10, 11, 13, 14, 16, 19, 20, 21)
            rows = rows_of.get(h["Numero"], [])
            for r in rows:
                if r["Verokanta"] == d.s and r["Toimitettava"] != 0:
                    self.sales_row(r, special, dec, km, ko, keep)
            self.sales_totals(h, rows, dec)

    def sales_row(self, r, special, dec, km, ko, keep):
        d = self.d
        r["Verokanta"] = d.t
        if r["OstoVero"] == d.s:
            r["OstoVero"] = d.t
        r["Ostohinta"] = f32(r["Ostohinta"] * ko)
        r["OstohintaAlv0"] = r["Ostohinta"] / self.factor(r["OstoVero"])
        if keep and not special:
            r["Ahinta"] = self.factor(r["Verokanta"]) * r["AhintaAlv0"]
            r["Ahinta"] = half_away(r["Ahinta"], dec)
        else:
            if not special:
                r["Ahinta"] = r["Ahinta"] * km
                if km != 1.0:
                    r["Ahinta"] = half_away(r["Ahinta"], dec)
            r["AhintaAlv0"] = r["Ahinta"] / self.factor(r["Verokanta"])
        gross, gross0 = r["Ahinta"] * r["Maara"], r["AhintaAlv0"] * r["Maara"]
        if 0 < r["Alennus"] <= 100:
            gross *= 1 - r["Alennus"] / 100
            gross0 *= 1 - r["Alennus"] / 100
        if not special:
            r["Netto"] = bankers(gross, dec)
        r["Kate"] = f32(r["Netto"] - r["Maara"] * r["Ostohinta"])
        r["KateAlv0"] = f32(gross0 - r["Maara"] * r["OstohintaAlv0"])
        r["Kate"] = f32(bankers(r["Kate"], dec))
        r["KateAlv0"] = f32(bankers(r["KateAlv0"], dec))

    @staticmethod
    def sales_totals(h, rows, dec):
        h["Summa"] = h["Kate"] = h["KateAlv0"] = h["SummaAlv0"] = 0.0
        for r in rows:
            marked = r["Kate"] == 0 and r["Netto"] != 0
            if marked:
                r["Kate"] = 1.0
            if r["RakenneEmo"] or r["PakettiLapsi"] or r["OnVariKokoEmo"]:
                continue
            h["Summa"] += r["Netto"]
            gross0 = r["AhintaAlv0"] * r["Maara"]
            if 0 < r["Alennus"] <= 100:
                gross0 *= 1 - r["Alennus"] / 100
            h["SummaAlv0"] += gross0
            if not marked:
                h["Kate"] = h["Kate"] + r["Netto"] - r["Maara"] * r["Ostohinta"]
                h["KateAlv0"] = h["KateAlv0"] + gross0 - r["Maara"] * r["OstohintaAlv0"]
        for f in ("Summa", "Kate", "SummaAlv0", "KateAlv0"):
            h[f] = bankers(h[f], dec)

    def purchase_orders(self):
        d = self.d
        k = d.coef["OtKerroinEdit"] if d.coef["OtKerroinEdit"] > 0 else 1.0
        keep = d.on("SailytaAlv0_CheckBoxOT")
        rows_of = {}
        for r in sorted(self.tab["WINOTRI"], key=lambda r: (r["TilausNro"], r["RiviNro"])):
            rows_of.setdefault(r["TilausNro"], []).append(r)
        for h in self.tab["WINOT"]:
            if h["Tila"] > 4:
                continue
            s = s0 = 0.0
            for r in rows_of.get(h["TilausNro"], []):
                if r["AlvLuokka"] == d.s and r["Tulematta"] != 0:
                    r["AlvLuokka"] = d.t
                    if keep:
                        r["OstoHinta"] = r["OstoHintaAlv0"] * self.factor(r["AlvLuokka"])
                    else:
                        r["OstoHinta"] = r["OstoHinta"] * k
                        r["OstoHintaAlv0"] = r["OstoHinta"] / self.factor(r["AlvLuokka"])
                    r["Summa"] = r["OstoHinta"] * r["Maara"] * (1 - r["Alennus"] / 100)
                if not r["VariKokoLapsi"]:
                    s += r["Summa"]
                    s0 += r["OstoHintaAlv0"] * r["Maara"] * (1 - r["Alennus"] / 100)
            h["Summa"], h["SummaAlv0"] = s, s0

    def product_codes(self):
        count = 0
        for p in self.tab["TUOTE"]:
            if p["Verkkokauppa"] and (not p["NUMERO"] or set(p["NUMERO"]) & set(" *?/[]()%$#\"&^'")):
                p["Verkkokauppa"] = 0
                p["Bit5"] &= ~16  # the byte that holds the flag
                p["MUUTETTUPVM"], p["muutettutime"] = self.today, NOW
                if not self.d.on("Eiverkkokauppaa"):
                    self.mark(p["NUMERO"], "P")
                if self.d.on("Tuoteloki"):
                    self.log.append(f"{p['NUMERO']};{p['NIMI']}")
                count += 1
        self.log.append(f"Verkkokauppa -valinta poistettiin {count} tuotteelta")
