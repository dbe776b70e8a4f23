#include "search/filter_state.h"

#include <QStringList>
#include <utility>

#include "search/filter_expression.h"

namespace search {

void FilterState::setBaseFilter(const QString& expression) {
    m_base = expression;
    setUserFilter(userFilter(), isRecordSearch() ? QString() : m_words);
}

void FilterState::setUserFilter(const QString& expression, const QString& words) {
    m_source = expression.isEmpty() ? Source::None : Source::Expression;
    m_expression = expression;
    m_words = words.isEmpty() ? expression.trimmed() : words;
}

QString FilterState::userFilter() const {
    return m_source == Source::Expression ? m_expression : QString();
}

void FilterState::setRecordSearch(const QString& words) {
    m_source = Source::RecordSearch;
    m_words = words;
}

void FilterState::setRange(KeyRange range, const QString& words) {
    m_range = std::move(range);
    m_rangeWords = words;
}

bool FilterState::isRestricted() const {
    return m_source != Source::None || m_range;
}

void FilterState::clear() {
    setUserFilter({});
    clearRange();
}

QString FilterState::expression() const {
    return composedFilter(m_base, userFilter(), m_showPassive);
}

QString FilterState::description() const {
    QStringList parts;
    if (isRecordSearch())
        parts.append(QStringLiteral("haku: ") + m_words);
    else if (!m_words.isEmpty())
        parts.append(m_words);
    if (m_range)
        parts.append(QStringLiteral("alue: ") + m_rangeWords);
    return parts.join(QStringLiteral("   "));
}

}  // namespace search
