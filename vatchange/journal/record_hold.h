#pragma once

#include <QtGlobal>
#include <chrono>
#include <optional>

#include "data/engine/engine.h"

namespace vatchange {

/// The lock of a record, and its bytes as read under it.
class RecordHold {
  public:
    static constexpr std::chrono::milliseconds kWait{2000};

    RecordHold(data::TableFile& file, data::RecordId record) : m_file(file), m_record(record) {
        m_held = file.lock(record, kWait);
        if (!m_held)
            return;
        try {
            m_stored = file.get(record);
        } catch (...) {
            release();
            throw;
        }
    }
    ~RecordHold() { release(); }
    RecordHold(const RecordHold&) = delete;
    RecordHold& operator=(const RecordHold&) = delete;

    bool held() const { return m_held; }
    bool exists() const { return m_stored.has_value(); }
    const QByteArray& bytes() const { return m_stored->bytes; }
    data::RecordId record() const { return m_record; }

    /// @throws DataError if another program holds the record or it is gone.
    void require() const {
        if (!m_held)
            throw data::DataError(data::ErrorKind::Locked, m_file.layout().tableName(), QString());
        if (!m_stored)
            throw data::DataError(data::ErrorKind::Gone, m_file.layout().tableName(), QString());
    }

  private:
    void release() noexcept {
        if (!m_held)
            return;
        m_held = false;
        try {
            m_file.unlock(m_record);
        } catch (const std::exception& error) {  // it ends with the session
            qWarning("RecordHold: unlock failed: %s", error.what());
        }
    }

    data::TableFile& m_file;
    data::RecordId m_record;
    bool m_held = false;
    std::optional<data::StoredRecord> m_stored;
};

}  // namespace vatchange
