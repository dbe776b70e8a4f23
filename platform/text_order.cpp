#include "platform/text_order.h"

#include <QCollator>
#include <QLocale>
#include <algorithm>

namespace platform {

namespace {

char16_t foldAscii(QChar c) {
    const char16_t unit = c.unicode();
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

}  // namespace

bool sameIgnoringAsciiCase(const QString& a, const QString& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](QChar x, QChar y) { return foldAscii(x) == foldAscii(y); });
}

void sortInFinnishOrder(QStringList& names) {
    QCollator collator(QLocale(QLocale::Finnish, QLocale::Finland));
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(names.begin(), names.end(), [&collator](const QString& a, const QString& b) {
        const int order = collator.compare(a, b);
        return order != 0 ? order < 0 : a < b;
    });
}

}  // namespace platform
