#include <QDebug>
#include <utility>

#include "data/record/filter.h"
#include "data/record/record_codec.h"
#include "data/table/key_view.h"
#include "data/table/tb_table.h"

// Changing records: edit, insert, post, cancel, delete.

namespace data {

// Locks the current record and rereads it. @return false if another program holds it.
bool TtbTable::beginEdit(std::chrono::milliseconds wait) {
    requireRecord();
    if (m_state != TableState::Browse)
        return true;
    if (!m_file->lock(m_current->id, wait))
        return false;
    m_locked = m_current->id;
    try {
        std::optional<StoredRecord> stored = m_file->get(m_current->id);
        if (!stored)
            throw DataError(ErrorKind::Gone, m_tableName, QString());
        m_buffer = stored->bytes;
        m_current = std::move(stored);
    } catch (...) {
        releaseLock();
        throw;
    }
    m_state = TableState::Edit;
    return true;
}

void TtbTable::edit() {
    if (m_state == TableState::Insert)
        return;
    if (!beginEdit(m_lockWait))
        throw DataError(ErrorKind::Locked, m_tableName, QString());
}

bool TtbTable::tryEdit(std::chrono::milliseconds wait) {
    return m_state == TableState::Insert || beginEdit(wait);
}

void TtbTable::insert() {
    requireBrowsing();
    const RecordLayout& layout = m_file->layout();
    QByteArray empty(layout.recordLength(), '\0');
    for (const TFieldCacheItem& field : layout.fields())
        clearField(field, reinterpret_cast<uchar*>(empty.data()));
    m_buffer = std::move(empty);
    m_state = TableState::Insert;
}

void TtbTable::post() {
    requireEditing();
    if (m_state == TableState::Insert) {
        QByteArray bytes = m_buffer;
        const RecordId id = m_file->insert(bytes);
        m_current = StoredRecord{id, std::move(bytes)};
        m_eof = m_bof = false;
        m_view->forget();
    } else {
        m_file->update(m_current->id, m_buffer);
        m_current->bytes = m_buffer;
        // Records read ahead stay valid: they are used only while the record's key is unchanged.
    }
    releaseLock();
    m_state = TableState::Browse;
}

void TtbTable::cancel() {
    requireOpen();
    if (m_state == TableState::Browse)
        return;
    releaseLock();
    m_state = TableState::Browse;
}

void TtbTable::insertRecord(const std::vector<Value>& values) {
    insert();
    try {
        if (values.size() > m_fields.size())
            throw DataError(
                ErrorKind::BadValue, m_tableName,
                QStringLiteral("%1 values for %2 fields").arg(values.size()).arg(m_fields.size()));
        for (size_t i = 0; i < values.size(); ++i)
            if (values[i].isValid())
                m_fields[i]->setValue(values[i]);
        post();
    } catch (...) {
        cancel();
        throw;
    }
}

void TtbTable::deleteRecord() {
    requireRecord();
    if (m_state == TableState::Insert)
        requireBrowsing();
    const bool wasEditing = m_state == TableState::Edit;
    if (!wasEditing) {
        if (!m_file->lock(m_current->id, m_lockWait))
            throw DataError(ErrorKind::Locked, m_tableName, QString());
        m_locked = m_current->id;
    }
    try {
        m_file->remove(m_current->id);
    } catch (...) {
        if (!wasEditing)
            releaseLock();
        throw;
    }
    releaseLock();
    m_state = TableState::Browse;
    m_view->forget();
    std::optional<StoredRecord> found = m_view->step(*m_current, Direction::Forward);
    const bool atEof = !found;
    if (!found)
        found = m_view->last();
    place(std::move(found), atEof, false);
}

// The write is already committed: failing to unlock must not make it look failed. The lock ends
// with the process.
void TtbTable::releaseLock() noexcept {
    if (!m_locked)
        return;
    try {
        m_file->unlock(*m_locked);
    } catch (const std::exception& error) {
        qWarning("TtbTable: unlock failed: %s", error.what());
    }
    m_locked.reset();
}

}  // namespace data
