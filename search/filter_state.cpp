#include "search/filter_state.h"

#include <QStringList>
#include <utility>

#include "search/filter_expression.h"

namespace search {

void FilterState::setBaseFilter(const QString& expression) {
    m_base = expression;
    setUserFilter(userFilter());
}

void FilterState::setUserFilter(const QString& expression) {
    m_source = expression.isEmpty() ? Source::None : Source::Expression;
    m_text = expression;
}

QString FilterState::userFilter() const {
    return m_source == Source::Expression ? m_text : QString();
}

void FilterState::setRecordSearch(const QString& text) {
    m_source = Source::RecordSearch;
    m_text = text;
}

void FilterState::setRange(KeyRange range, const QString& text) {
    m_range = std::move(range);
    m_rangeText = text;
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
        parts.append(QStringLiteral("haku: ") + m_text);
    else if (!m_text.isEmpty())
        parts.append(m_text.trimmed());
    if (m_range)
        parts.append(QStringLiteral("alue: ") + m_rangeText);
    return parts.join(QStringLiteral("   "));
}

}  // namespace search
