#include "vatchange/journal/verification_text.h"

#include <array>

namespace vatchange {

namespace {

constexpr int kInLine = 3;  ///< findings in the log's line

struct Wording {
    std::array<QString, kFindingKinds> kinds;   // counted
    std::array<QString, kFindingKinds> single;  // of one finding
    std::array<QString, kLeftReasons> reasons;
    std::array<QString, 5> causes;
    QString whole;      // a price: place, before, after
    QString changed;    // of ChangedSince
    QString rehearsed;  // of OtherThanRehearsed: place, the rehearsal's change, the run's
    QString notChanged;
    QString laterRun;
    QString head;
    QString undone;
    QString sums;
    QString left;
    QString nothingLeft;
    QString more;
    QString holds;
    QString holdsNot;
};

const Wording& finnish() {
    static const Wording kWording{
        {QStringLiteral("muuttamatta jääneitä"), QStringLiteral("poistettuja"),
         QStringLiteral("palautuneita"), QStringLiteral("ajon jälkeen muuttuneita kenttiä"),
         QStringLiteral("nollaksi tyhjästä verottomasta hinnasta muuttuneita hintoja"),
         QStringLiteral("nollaksi tai negatiivisiksi muuttuneita hintoja"),
         QStringLiteral("ennallaan pysyneitä hintoja"),
         QStringLiteral("koeajosta poikkeavia kenttiä")},
        {QStringLiteral("jäi muuttamatta"), QStringLiteral("poistettu ajon jälkeen"),
         QStringLiteral("on taas olemassa"), QString(), QStringLiteral("veroton hinta tyhjä"),
         QStringLiteral("nolla tai negatiivinen"), QStringLiteral("hinta ennallaan"), QString()},
        {QStringLiteral("rajaus"), QStringLiteral("taulua ei valittu"),
         QStringLiteral("ei kuulu muunnokseen"), QStringLiteral("toinen ohjelma varasi tietueen"),
         QStringLiteral("turvaraja"), QStringLiteral("ajo jäi kesken"),
         QStringLiteral("vaihe epäonnistui"), QStringLiteral("muutettu ajon jälkeen"),
         QStringLiteral("peruttu"), QStringLiteral("syy ei tiedossa")},
        {QString(), QStringLiteral("hinnan muutosraja"), QStringLiteral("ei lähdettä"),
         QStringLiteral("kerroin 1"), QStringLiteral("pyöristys")},
        QStringLiteral("%1: ennen %2, ajon jälkeen %3"),
        QStringLiteral("%1: ajo jätti %2, nyt %3"),
        QStringLiteral("%1: koeajossa %2, ajossa %3"),
        QStringLiteral("ei muuttunut"),
        QStringLiteral(" (ajo %1)"),
        QStringLiteral("muutoksia %1"),
        QStringLiteral("joista peruttu %1"),
        QStringLiteral("%1 %2: %3 kpl, ennen yhteensä %4, jälkeen %5, muutos keskimäärin %6 %"),
        QStringLiteral("vanha alv-luokka jäi: %1"),
        QStringLiteral("vanhaa alv-luokkaa ei jäänyt"),
        QStringLiteral("... ja %1 muuta"),
        QStringLiteral("kaikki muutokset ovat tallessa"),
        QStringLiteral("poikkeamia löytyi")};
    return kWording;
}

const Wording& english() {
    static const Wording kWording{
        {QStringLiteral("left behind"), QStringLiteral("records gone"),
         QStringLiteral("deleted records that exist"), QStringLiteral("fields changed since"),
         QStringLiteral("prices that became 0 from an empty VAT-free price"),
         QStringLiteral("prices that became 0 or negative"), QStringLiteral("prices unchanged"),
         QStringLiteral("fields changed otherwise than in the rehearsal")},
        {QStringLiteral("left behind"), QStringLiteral("is gone"), QStringLiteral("exists again"),
         QString(), QStringLiteral("empty VAT-free price"), QStringLiteral("0 or negative"),
         QStringLiteral("price unchanged"), QString()},
        {QStringLiteral("restriction"), QStringLiteral("table not chosen"),
         QStringLiteral("never converted"), QStringLiteral("passed over"),
         QStringLiteral("over the limit"), QStringLiteral("run not finished"),
         QStringLiteral("step failed"), QStringLiteral("changed since"), QStringLiteral("undone"),
         QStringLiteral("unknown")},
        {QString(), QStringLiteral("price change limit"), QStringLiteral("no source"),
         QStringLiteral("coefficient 1"), QStringLiteral("rounding")},
        QStringLiteral("%1: before %2, after the run %3"),
        QStringLiteral("%1: the run left %2, now %3"),
        QStringLiteral("%1: rehearsal %2, run %3"),
        QStringLiteral("no change"),
        QStringLiteral(" (run %1)"),
        QStringLiteral("changes %1"),
        QStringLiteral("of them undone %1"),
        QStringLiteral("%1 %2: %3 changed, sum before %4, after %5, mean change %6 %"),
        QStringLiteral("source class left: %1"),
        QStringLiteral("no source class left"),
        QStringLiteral("... and %1 more"),
        QStringLiteral("everything is as the run left it"),
        QStringLiteral("not everything is as the run left it")};
    return kWording;
}

QString shown(const QString& value) {
    return value.isEmpty() ? QStringLiteral("\"\"") : value;
}

QString rehearsedText(const QString& place, const RehearsalDifference& difference,
                      const Wording& w) {
    using Kind = RehearsalDifference::Kind;
    const auto change = [&w](bool none, const QString& before, const QString& after) {
        return none ? w.notChanged : shown(before) + QStringLiteral(" -> ") + shown(after);
    };
    return w.rehearsed.arg(
        place,
        change(difference.kind == Kind::OnlyMade, difference.rehearsedBefore,
               difference.rehearsedAfter),
        change(difference.kind == Kind::OnlyRehearsed, difference.before, difference.after));
}

QString findingText(const Finding& finding, const Wording& w) {
    QString place = finding.table + u' ' + finding.key;
    if (!finding.field.isEmpty())
        place += u' ' + finding.field;
    const QString& kind = w.single[static_cast<size_t>(finding.kind)];
    QString text;
    switch (finding.kind) {
        case FindingKind::LeftBehind:
            text = place + QStringLiteral(": ") + kind + QStringLiteral(", ") +
                   w.reasons[static_cast<size_t>(finding.reason)];
            break;
        case FindingKind::Gone:
        case FindingKind::Returned:
            text = place + QStringLiteral(": ") + kind;
            break;
        case FindingKind::ChangedSince:
            text = w.changed.arg(place, shown(finding.after), shown(finding.present));
            break;
        case FindingKind::EmptyVat0:
        case FindingKind::NotPositive:
            text = w.whole.arg(place, shown(finding.before), shown(finding.after)) +
                   QStringLiteral(" (") + kind + u')';
            break;
        case FindingKind::PriceUnchanged:
            text = place + QStringLiteral(" = ") + shown(finding.present) + QStringLiteral(": ") +
                   kind + QStringLiteral(", ") + w.causes[static_cast<size_t>(finding.cause)];
            break;
        case FindingKind::OtherThanRehearsed:
            text = rehearsedText(place, finding.rehearsed.value_or(RehearsalDifference()), w);
            break;
    }
    if (finding.laterRun > 0)
        text += w.laterRun.arg(finding.laterRun);
    return text;
}

QString headText(const Verification& verification, const Wording& w) {
    QString text = w.head.arg(verification.changes);
    if (verification.undone > 0)
        text += QStringLiteral(", ") + w.undone.arg(verification.undone);
    return text;
}

QString leftText(const Verification& verification, const Wording& w) {
    if (verification.remaining.empty())
        return w.nothingLeft;
    QStringList parts;
    for (const Remainder& remainder : verification.remaining)
        parts += QStringLiteral("%1 %2 (%3)")
                     .arg(remainder.table)
                     .arg(remainder.records)
                     .arg(w.reasons[static_cast<size_t>(remainder.reason)]);
    return w.left.arg(parts.join(QStringLiteral(", ")));
}

QStringList countTexts(const Verification& verification, const Wording& w) {
    QStringList texts;
    for (size_t kind = 0; kind < verification.counts.size(); ++kind) {
        if (verification.counts[kind] > 0)
            texts += w.kinds[kind] + u' ' + QString::number(verification.counts[kind]);
    }
    return texts;
}

QString amount(double value, int decimals) {
    return QString::number(value, 'f', decimals);
}

QStringList allLines(const Verification& verification, const Wording& w) {
    QStringList lines{headText(verification, w)};
    for (const PriceSums& sums : verification.sums) {
        lines +=
            w.sums.arg(sums.table, sums.field, QString::number(sums.count), amount(sums.before, 2),
                       amount(sums.after, 2), amount(sums.meanPercent, 3));
    }
    lines += leftText(verification, w);
    for (size_t kind = 0; kind < verification.counts.size(); ++kind) {
        const qint64 count = verification.counts[kind];
        if (count == 0)
            continue;
        lines += w.kinds[kind] + QStringLiteral(": ") + QString::number(count);
        qint64 listed = 0;
        for (const Finding& finding : verification.findings) {
            if (static_cast<size_t>(finding.kind) != kind)
                continue;
            lines += QStringLiteral("  ") + findingText(finding, w);
            ++listed;
        }
        if (listed < count)
            lines += QStringLiteral("  ") + w.more.arg(count - listed);
    }
    lines += verification.holds() ? w.holds : w.holdsNot;
    return lines;
}

}  // namespace

QString reasonFinnish(LeftReason reason) {
    return finnish().reasons[static_cast<size_t>(reason)];
}

QString causeFinnish(UnchangedCause cause) {
    return finnish().causes[static_cast<size_t>(cause)];
}

QString findingFinnish(const Finding& finding) {
    return findingText(finding, finnish());
}

QString findingEnglish(const Finding& finding) {
    return findingText(finding, english());
}

QString verificationLine(const Verification& verification) {
    const Wording& w = finnish();
    QStringList parts{headText(verification, w)};
    parts += leftText(verification, w);
    parts += countTexts(verification, w);
    QString line = QStringLiteral("Tarkastus: ") + parts.join(QStringLiteral("; ")) + u'.';
    // prices that stayed are too ordinary to be named in the log
    int named = 0;
    for (const Finding& finding : verification.findings) {
        if (finding.kind == FindingKind::PriceUnchanged || named == kInLine)
            continue;
        line += u' ' + findingText(finding, w) + u'.';
        ++named;
    }
    return line;
}

QStringList verificationTextFinnish(const Verification& verification) {
    return allLines(verification, finnish());
}

QStringList verificationTextEnglish(const Verification& verification) {
    return allLines(verification, english());
}

}  // namespace vatchange
