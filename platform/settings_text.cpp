#include "platform/settings_text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace platform {

namespace {

constexpr std::array<std::pair<char16_t, char16_t>, 10> kEscapes{{{u'\0', u'0'},
                                                                  {u'\a', u'a'},
                                                                  {u'\b', u'b'},
                                                                  {u'\f', u'f'},
                                                                  {u'\n', u'n'},
                                                                  {u'\r', u'r'},
                                                                  {u'\t', u't'},
                                                                  {u'\v', u'v'},
                                                                  {u'"', u'"'},
                                                                  {u'\\', u'\\'}}};

int hexDigit(QChar c) {
    const char16_t code = c.unicode();
    if (code >= u'0' && code <= u'9')
        return code - u'0';
    const char16_t letter = code | 0x20;
    return letter >= u'a' && letter <= u'f' ? letter - u'a' + 10 : -1;
}

/// Reads up to `most` hexadecimal digits from `at` and moves `at` past them.
char16_t hexNumber(const QString& text, qsizetype& at, qsizetype most) {
    char16_t number = 0;
    for (; most > 0 && at < text.size() && hexDigit(text.at(at)) >= 0; --most, ++at)
        number = static_cast<char16_t>(number * 16 + hexDigit(text.at(at)));
    return number;
}

QString escaped(const QString& value) {
    QString text;
    bool afterHex = false;  // a digit here would extend the number before
    for (const QChar c : value) {
        const char16_t code = c.unicode();
        if (afterHex && hexDigit(c) >= 0) {
            text += QStringLiteral("\\x") + QString::number(code, 16);
            continue;
        }
        afterHex = code < 0x20;
        const auto* known =
            std::find_if(kEscapes.begin(), kEscapes.end(),
                         [code](const auto& escape) { return escape.first == code; });
        if (known != kEscapes.end()) {
            text += u'\\';
            text += QChar(known->second);
            afterHex = code == 0;
        } else if (code < 0x20) {
            text += QStringLiteral("\\x") + QString::number(code, 16);
        } else {
            text += c;
        }
    }
    return text;
}

QString unescaped(const QString& text) {
    QString value;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text.at(at) != u'\\' || ++at == text.size()) {
            if (at < text.size())
                value += text.at(at);
            continue;
        }
        const char16_t code = text.at(at).unicode();
        const auto* known =
            std::find_if(kEscapes.begin(), kEscapes.end(),
                         [code](const auto& escape) { return escape.second == code; });
        if (known != kEscapes.end()) {
            value += QChar(known->first);
        } else if (code == u'x') {
            ++at;
            value += QChar(hexNumber(text, at, 4));
            --at;
        }
    }
    return value;
}

/// A text in double quotes with only escaped quotes inside.
bool isQuoted(const QString& text) {
    if (text.size() < 2 || text.front() != u'"' || text.back() != u'"')
        return false;
    for (qsizetype at = 1; at < text.size() - 1; ++at) {
        if (text.at(at) == u'\\')
            ++at;
        else if (text.at(at) == u'"')
            return false;
    }
    return true;
}

}  // namespace

QString writtenPath(const QString& path) {
    QString key;
    for (const QChar c : path) {
        const char16_t code = c.unicode();
        const bool plain = (code >= u'0' && code <= u'9') || (code >= u'a' && code <= u'z') ||
                           (code >= u'A' && code <= u'Z') || code == u'_' || code == u'-' ||
                           code == u'.';
        if (code == u'/')
            key += u'\\';
        else if (plain)
            key += c;
        else
            key += (code <= 0xFF ? QStringLiteral("%%1").arg(code, 2, 16, QChar(u'0'))
                                 : QStringLiteral("%u%1").arg(code, 4, 16, QChar(u'0')))
                       .toUpper();
    }
    return key;
}

QString plainPath(const QString& key) {
    QString path;
    for (qsizetype at = 0; at < key.size(); ++at) {
        const QChar c = key.at(at);
        if (c == u'%') {
            const bool wide = at + 1 < key.size() && key.at(at + 1) == u'U';
            const qsizetype first = at + (wide ? 2 : 1);
            const qsizetype digits = wide ? 4 : 2;
            qsizetype end = first;
            const char16_t code = hexNumber(key, end, digits);
            if (end - first == digits) {
                path += QChar(code);
                at = end - 1;
                continue;
            }
        }
        path += c == u'\\' ? QChar(u'/') : c;
    }
    return path;
}

QString writtenValue(const QString& value) {
    const QString text = escaped(value.startsWith(u'@') ? u'@' + value : value);
    const bool quotes = text.startsWith(u' ') || text.endsWith(u' ') || text.contains(u';') ||
                        text.contains(u',') || text.contains(u'=');
    return quotes ? u'"' + text + u'"' : text;
}

QString plainValue(const QString& text) {
    QString inner = isQuoted(text) ? text.sliced(1, text.size() - 2) : text;
    const QString value = unescaped(inner);
    if (escaped(value) != inner)
        return inner;
    return value.startsWith(QLatin1String("@@")) ? value.sliced(1) : value;
}

}  // namespace platform
