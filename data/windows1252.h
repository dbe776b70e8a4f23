#pragma once

#include <QByteArray>
#include <QString>

namespace data {

/// Record texts are Windows-1252. The five undefined codes (81, 8D, 8F, 90, 9D) map to the control
/// characters of the same number, so that every byte survives a round trip.
QString fromWindows1252(const char* bytes, qsizetype length);
inline QString fromWindows1252(const QByteArray& bytes) {
    return fromWindows1252(bytes.constData(), bytes.size());
}

/// Encodes a text. @return false, leaving `bytes` unchanged, if a character has no code; its index
/// goes to `*badIndex` (if given).
bool toWindows1252(const QString& text, QByteArray& bytes, qsizetype* badIndex = nullptr);

/// Weight of a byte in case-insensitive keys: å, ä, ö come after z in this order.
extern const unsigned char kCaseFoldWeight[256];

}  // namespace data
