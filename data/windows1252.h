#pragma once

#include <QByteArray>
#include <QString>

namespace data {

/// Text of records is Windows-1252. The five codes that the table leaves open (81, 8D, 8F, 90, 9D)
/// stand for the control characters of the same number, so that every byte comes back as it was.
QString fromWindows1252(const char* bytes, qsizetype length);
inline QString fromWindows1252(const QByteArray& bytes) {
    return fromWindows1252(bytes.constData(), bytes.size());
}

/// The bytes of a text. @return false, leaving `bytes` alone, when a character has no code;
/// `*badIndex` (when given) is its place in the text.
bool toWindows1252(const QString& text, QByteArray& bytes, qsizetype* badIndex = nullptr);

/// Weight of a byte in keys that ignore case: letters fold to one case, and å, ä, ö come after z in
/// this order.
extern const unsigned char kCaseFoldWeight[256];

}  // namespace data
