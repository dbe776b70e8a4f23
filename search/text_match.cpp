#include "search/text_match.h"

#include <array>
#include <string_view>

#include "data/record/record_codec.h"
#include "data/windows1252.h"

namespace search {

namespace {

uchar weightOf(char byte) {
    return data::kCaseFoldWeight[static_cast<uchar>(byte)];
}

constexpr qsizetype kLongestField = 256;

}  // namespace

TextMatch::TextMatch(const QString& text, bool anywhere)
    : m_text(text.toCaseFolded()), m_anywhere(anywhere), m_possible(true) {
    m_possible = data::toWindows1252(text, m_weights);
    for (char& byte : m_weights)
        byte = static_cast<char>(weightOf(byte));
}

bool TextMatch::matchesBytes(QByteArrayView bytes) const {
    const qsizetype wanted = m_weights.size();
    if (!m_possible || bytes.size() < wanted)
        return false;
    if (!m_anywhere) {
        for (qsizetype i = 0; i < wanted; ++i) {
            if (weightOf(bytes[i]) != static_cast<uchar>(m_weights[i]))
                return false;
        }
        return true;
    }
    if (wanted == 0)
        return true;
    std::array<char, kLongestField> folded;
    QByteArray longer;
    char* out = folded.data();
    if (bytes.size() > kLongestField) {
        longer.resize(bytes.size());
        out = longer.data();
    }
    for (qsizetype i = 0; i < bytes.size(); ++i)
        out[i] = static_cast<char>(weightOf(bytes[i]));
    return matchesFolded({out, bytes.size()});
}

bool TextMatch::matchesFolded(QByteArrayView weights) const {
    if (!m_possible)
        return false;
    if (!m_anywhere)
        return weights.startsWith(m_weights);
    const std::string_view text(weights.data(), static_cast<size_t>(weights.size()));
    return text.find(
               std::string_view(m_weights.constData(), static_cast<size_t>(m_weights.size()))) !=
           std::string_view::npos;
}

bool TextMatch::matchesText(const QString& shown) const {
    const QString folded = shown.toCaseFolded();
    return m_anywhere ? folded.contains(m_text) : folded.startsWith(m_text);
}

std::function<bool(const QByteArray&)> TextMatch::onField(const data::TtbTable& table,
                                                          const QString& field) const {
    const int index = table.layout().indexOf(field);
    const data::TField* shown = table.findField(field);
    if (index < 0 || shown == nullptr)
        return [](const QByteArray&) { return false; };
    const data::TFieldCacheItem& item = table.layout().field(index);
    if (item.kind() == data::Kind::String || item.kind() == data::Kind::Memo)
        return [match = *this, &item](const QByteArray& record) {
            return match.matchesBytes(
                data::readTextBytes(item, reinterpret_cast<const uchar*>(record.constData())));
        };
    return [match = *this, shown](const QByteArray& record) {
        return match.matchesText(shown->displayText(record));
    };
}

}  // namespace search
