#include "data/windows1252.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace data {

namespace {

// Characters of the codes 80..9F; all other codes equal Latin-1.
constexpr std::array<char16_t, 32> kHigh{{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
}};

// The inverse, sorted by character.
struct Reverse {
    char16_t character = 0;
    unsigned char code = 0;
};

constexpr std::array<Reverse, 32> reverseTable() {
    std::array<Reverse, 32> table{};
    for (std::size_t i = 0; i < kHigh.size(); ++i)
        table[i] = {kHigh[i], static_cast<unsigned char>(0x80 + i)};
    std::sort(table.begin(), table.end(),
              [](const Reverse& a, const Reverse& b) { return a.character < b.character; });
    return table;
}

constexpr std::array<Reverse, 32> kReverse = reverseTable();

bool isHigh(char16_t code) {
    return code >= 0x80 && code < 0xA0;
}

// Code of a character outside Latin-1; -1 if there is none.
int reverseCode(char16_t character) {
    const auto* at =
        std::lower_bound(kReverse.begin(), kReverse.end(), character,
                         [](const Reverse& entry, char16_t c) { return entry.character < c; });
    return at != kReverse.end() && at->character == character ? at->code : -1;
}

}  // namespace

QString fromWindows1252(const char* bytes, qsizetype length) {
    bool plain = true;
    for (qsizetype i = 0; i < length && plain; ++i)
        plain = !isHigh(static_cast<unsigned char>(bytes[i]));
    QString text = QString::fromLatin1(bytes, length);
    if (!plain)
        for (QChar& c : text)
            if (isHigh(c.unicode()))
                c = QChar(kHigh[c.unicode() - 0x80U]);
    return text;
}

bool toWindows1252(const QString& text, QByteArray& bytes, qsizetype* badIndex) {
    QByteArray result(text.size(), Qt::Uninitialized);
    char* out = result.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        int code = c;
        if (c > 0xFF || isHigh(c))
            code = reverseCode(c);
        if (code < 0) {
            if (badIndex != nullptr)
                *badIndex = i;
            return false;
        }
        out[i] = static_cast<char>(code);
    }
    bytes = result;
    return true;
}

// Order: the codes up to '@', the letters A..Z, then Å Ä Ö, then everything else by code. A
// lower-case letter has its capital's weight; no other characters share a weight.
// clang-format off
const unsigned char kCaseFoldWeight[256] = {
      0,   1,   2,   3,   4,   5,   6,   7,   8,   9,  10,  11,  12,  13,  14,  15,
     16,  17,  18,  19,  20,  21,  22,  23,  24,  25,  26,  27,  28,  29,  30,  31,
     32,  33,  34,  35,  36,  37,  38,  39,  40,  41,  42,  43,  44,  45,  46,  47,
     48,  49,  50,  51,  52,  53,  54,  55,  56,  57,  58,  59,  60,  61,  62,  63,
     64,  65,  66,  67,  68,  69,  70,  71,  72,  73,  74,  75,  76,  77,  78,  79,
     80,  81,  82,  83,  84,  85,  86,  87,  88,  89,  90,  94,  95,  96,  97,  98,
     99,  65,  66,  67,  68,  69,  70,  71,  72,  73,  74,  75,  76,  77,  78,  79,
     80,  81,  82,  83,  84,  85,  86,  87,  88,  89,  90, 100, 101, 102, 103, 104,
    105, 106, 107, 108, 109, 110, 111, 112, 113, 114, 115, 116, 117, 118, 119, 120,
    121, 122, 123, 124, 125, 126, 127, 128, 129, 130, 115, 131, 117, 132, 119, 133,
    134, 135, 136, 137, 138, 139, 140, 141, 142, 143, 144, 145, 146, 147, 148, 149,
    150, 151, 152, 153, 154, 155, 156, 157, 158, 159, 160, 161, 162, 163, 164, 165,
    166, 167, 168, 169,  92,  91, 170, 171, 172, 173, 174, 175, 176, 177, 178, 179,
    180, 181, 182, 183, 184, 185,  93, 186, 187, 188, 189, 190, 191, 192, 193, 194,
    166, 167, 168, 169,  92,  91, 170, 171, 172, 173, 174, 175, 176, 177, 178, 179,
    180, 181, 182, 183, 184, 185,  93, 195, 187, 188, 189, 190, 191, 192, 193, 133,
};
// clang-format on

}  // namespace data
