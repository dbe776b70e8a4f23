#include "vatchange/changes/change_texts.h"

#include <QLocale>
#include <cmath>

namespace vatchange {

namespace {

constexpr int kLeastDecimals = 2;
constexpr int kMostDecimals = 4;

const QLocale& finnish() {
    static const QLocale kLocale(QLocale::Finnish);
    return kLocale;
}

QString valueShown(const ChangeList& list, int row, double value, const QString& text) {
    const ChangeKind kind = list.kind(row);
    if (kind == ChangeKind::Inserted || kind == ChangeKind::Deleted)
        return {};
    return list.field(row).amount ? amountShown(value) : text;
}

int decimalsOf(double amount) {
    int decimals = kLeastDecimals;
    for (double scale = 100.0; decimals < kMostDecimals; ++decimals, scale *= 10.0) {
        const double scaled = amount * scale;
        if (std::fabs(scaled - std::round(scaled)) < 1e-4 + std::fabs(scaled) * 1e-7)
            break;
    }
    return decimals;
}

QString signedText(double value, const QString& text) {
    return value > 0 ? u'+' + text : text;
}

/// Findings that the reason of their row tells.
bool hasReason(ChangeFinding finding) {
    switch (finding) {
        case ChangeFinding::FarFromExpected:
        case ChangeFinding::NotPositive:
        case ChangeFinding::OtherThanRehearsed:
        case ChangeFinding::Undone:
            return false;
        default:
            return true;
    }
}

}  // namespace

QString amountShown(double amount) {
    return finnish().toString(amount, 'f', decimalsOf(amount));
}

QString plainAmount(double amount) {
    return QString::number(amount, 'f', decimalsOf(amount)).replace(u'.', u',');
}

QString fieldTitleOf(const ChangeList& list, int row) {
    switch (list.kind(row)) {
        case ChangeKind::Inserted:
            return QStringLiteral("Uusi rivi");
        case ChangeKind::Deleted:
            return QStringLiteral("Poistettu rivi");
        default:
            return list.field(row).title;
    }
}

QString beforeShown(const ChangeList& list, int row) {
    return valueShown(list, row, list.before(row), list.beforeText(row));
}

QString afterShown(const ChangeList& list, int row) {
    return valueShown(list, row, list.after(row), list.afterText(row));
}

QString differenceShown(const ChangeList& list, int row) {
    const std::optional<double> difference = list.difference(row);
    return difference ? signedText(*difference, amountShown(*difference)) : QString();
}

QString percentShown(const ChangeList& list, int row) {
    const std::optional<double> percent = list.percent(row);
    return percent ? signedText(*percent, finnish().toString(*percent, 'f', 2)) : QString();
}

QString findingsShown(const ChangeList& list, int row) {
    QStringList texts;
    for (int finding = 0; finding < kChangeFindings; ++finding) {
        const auto kind = static_cast<ChangeFinding>(finding);
        if ((list.findings(row) & bitOf(kind)) != 0 &&
            (list.reason(row).isEmpty() || !hasReason(kind)))
            texts += findingName(kind);
    }
    if (!list.reason(row).isEmpty())
        texts += list.reason(row);
    return texts.join(QStringLiteral("; "));
}

}  // namespace vatchange
