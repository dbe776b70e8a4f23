#include <utility>

#include "data/record/filter.h"
#include "data/table/key_view.h"
#include "data/table/tb_table.h"

// Filters, refresh and bookmarks of a record table.

namespace data {

// Changes what the view shows and repositions on the current record if it is still shown (with
// `keep` always), else on the following one, else on the previous. `change(true)` undoes the
// change.
void TtbTable::changeView(bool keep, const std::function<void(bool)>& change) {
    const bool browsing = m_state == TableState::Browse;
    try {
        change(false);
        if (!browsing || (m_current && (keep || m_view->contains(*m_current))))
            return;
        std::optional<StoredRecord> found =
            m_current ? m_view->step(*m_current, Direction::Forward) : m_view->first();
        const bool atEof = !found;
        if (!found && m_current)
            found = m_view->last();
        place(std::move(found), atEof, false);
    } catch (...) {
        change(true);
        throw;
    }
}

void TtbTable::updateAcceptance() {
    if (m_filtered && m_filter)
        m_view->setAccept(
            [this](const StoredRecord& record) { return m_filter->accepts(record.bytes); });
    else
        m_view->setAccept({});
}

void TtbTable::setFilter(const QString& expression) {
    if (!isOpen()) {
        m_filterText = expression;
        return;
    }
    if (m_filtered)
        requireBrowsing();
    std::unique_ptr<Filter> other;
    if (!expression.trimmed().isEmpty())
        other = std::make_unique<Filter>(expression, m_file->layout());
    changeView(false, [&](bool) {
        std::swap(m_filter, other);
        updateAcceptance();
    });
    m_filterText = expression;
}

void TtbTable::setFiltered(bool on) {
    if (!isOpen()) {
        m_filtered = on;
        return;
    }
    requireBrowsing();
    bool other = on;
    changeView(false, [&](bool) {
        std::swap(m_filtered, other);
        updateAcceptance();
    });
}

void TtbTable::refresh() {
    requireBrowsing();
    m_view->forget();
    if (!m_current) {
        first();
        return;
    }
    std::optional<StoredRecord> found = m_file->get(m_current->id);
    if (found && m_view->contains(*found)) {
        place(std::move(found), m_eof, m_bof);
        return;
    }
    found = m_view->step(*m_current, Direction::Forward);
    const bool atEof = !found;
    if (!found)
        found = m_view->last();
    place(std::move(found), atEof, false);
}

Bookmark TtbTable::bookmark() const {
    requireOpen();
    return m_current ? Bookmark{m_current->id, m_current->bytes} : Bookmark{};
}

bool TtbTable::gotoBookmark(const Bookmark& mark) {
    requireBrowsing();
    if (!mark.isValid())
        return false;
    std::optional<StoredRecord> found = m_file->get(mark.id);
    if (!found || !m_view->contains(*found))
        return false;
    place(std::move(found), false, false);
    return true;
}

}  // namespace data
