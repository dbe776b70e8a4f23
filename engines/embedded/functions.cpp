#include "engines/embedded/functions.h"

#include <QByteArray>
#include <QString>
#include <QStringDecoder>
#include <algorithm>
#include <array>
#include <cmath>

#include "data/clock.h"
#include "data/error.h"
#include "data/windows1252.h"

namespace engines::embedded {

namespace {

void returnText(sqlite3_context* context, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    sqlite3_result_text(context, utf8.constData(), static_cast<int>(utf8.size()), SQLITE_TRANSIENT);
}

void curDate(sqlite3_context* context, int, sqlite3_value**) {
    returnText(context, Clock::now().toString(QStringLiteral("yyyy-MM-dd")));
}

void curTime(sqlite3_context* context, int, sqlite3_value**) {
    returnText(context, Clock::now().toString(QStringLiteral("HH:mm:ss")));
}

void now(sqlite3_context* context, int, sqlite3_value**) {
    returnText(context, Clock::now().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
}

bool isNull(sqlite3_value* value) {
    return sqlite3_value_type(value) == SQLITE_NULL;
}

void floorOf(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (!isNull(arguments[0]))
        sqlite3_result_double(context, std::floor(sqlite3_value_double(arguments[0])));
}

// Half away from zero, in doubles: the value times 10^decimals rounded, divided by 10^decimals.
void roundOf(sqlite3_context* context, int count, sqlite3_value** arguments) {
    if (isNull(arguments[0]) || (count > 1 && isNull(arguments[1])))
        return;
    const double value = sqlite3_value_double(arguments[0]);
    const int decimals = count > 1 ? sqlite3_value_int(arguments[1]) : 0;
    const double power = std::pow(10.0, std::abs(decimals));
    const double scaled = decimals < 0 ? value / power : value * power;
    const double rounded = std::round(scaled);
    const double result = decimals < 0 ? rounded * power : rounded / power;
    sqlite3_result_double(context, std::isfinite(result) ? result : value);
}

// Collation rank of a code point: its Windows-1252 byte if it has one.
int rankOf(char32_t character) {
    if (character < 0x80)
        return static_cast<int>(character);
    static const std::array<char32_t, 128> upper = [] {
        std::array<char32_t, 128> table{};
        for (size_t i = 0; i < table.size(); ++i) {
            const char byte = static_cast<char>(i + 128);
            table[i] = fromWindows1252(&byte, 1).at(0).unicode();
        }
        return table;
    }();
    if (character >= 0xA0 && character <= 0xFF)
        return static_cast<int>(character);
    const auto found = std::find(upper.begin(), upper.end(), character);
    return found != upper.end() ? static_cast<int>(found - upper.begin()) + 128
                                : static_cast<int>(character) + 0x100;
}

// The character that begins at `place` or contains it.
char32_t characterAt(const uchar* text, int length, int place) {
    int start = place;
    while (start > 0 && (text[start] & 0xC0) == 0x80)
        --start;
    const uchar lead = text[start];
    if (lead < 0x80)
        return lead;
    const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    char32_t character = lead & (0x3F >> more);
    for (int i = 1; i <= more && start + i < length; ++i)
        character = character << 6 | (text[start + i] & 0x3Fu);
    return character;
}

int compareTexts(void*, int lengthA, const void* a, int lengthB, const void* b) {
    const auto* textA = static_cast<const uchar*>(a);
    const auto* textB = static_cast<const uchar*>(b);
    const int common = std::min(lengthA, lengthB);
    const int at = static_cast<int>(std::mismatch(textA, textA + common, textB).first - textA);
    if (at == common)
        return lengthA - lengthB;
    if (textA[at] < 0x80 && textB[at] < 0x80)
        return textA[at] - textB[at];
    const int byRank =
        rankOf(characterAt(textA, lengthA, at)) - rankOf(characterAt(textB, lengthB, at));
    return byRank != 0 ? byRank : textA[at] - textB[at];
}

int compareDates(void*, int lengthA, const void* a, int lengthB, const void* b) {
    const auto* textA = static_cast<const uchar*>(a);
    const auto* textB = static_cast<const uchar*>(b);
    const auto* endA = textA + lengthA;
    const auto* endB = textB + lengthB;
    for (;;) {
        while (textA != endA && *textA == '-')
            ++textA;
        while (textB != endB && *textB == '-')
            ++textB;
        if (textA == endA || textB == endB)
            return (textA != endA) - (textB != endB);
        if (*textA != *textB)
            return *textA - *textB;
        ++textA;
        ++textB;
    }
}

void must(int code) {
    if (code != SQLITE_OK)
        throw DataError(ErrorKind::Engine, QString(), QString::fromLatin1(sqlite3_errstr(code)),
                        code);
}

}  // namespace

void registerFunctions(sqlite3* db) {
    // Deterministic within one run of a statement, so SQLite evaluates them once and all rows
    // written get the same time.
    constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    const auto add = [db](const char* name, int arguments, auto function) {
        must(sqlite3_create_function_v2(db, name, arguments, kFlags, nullptr, function, nullptr,
                                        nullptr, nullptr));
    };
    add("curdate", 0, curDate);
    add("curtime", 0, curTime);
    add("now", 0, now);
    add("floor", 1, floorOf);
    add("round", 1, roundOf);
    add("round", 2, roundOf);
    must(sqlite3_create_collation_v2(db, kTextCollation, SQLITE_UTF8, nullptr, compareTexts,
                                     nullptr));
    must(sqlite3_create_collation_v2(db, kDateCollation, SQLITE_UTF8, nullptr, compareDates,
                                     nullptr));
}

}  // namespace engines::embedded
