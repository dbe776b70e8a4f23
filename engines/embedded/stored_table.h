#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "data/engine/engine.h"
#include "engines/data_names.h"
#include "engines/embedded/catalogue.h"
#include "engines/embedded/key_image.h"
#include "engines/embedded/sqlite_names.h"

namespace engines::embedded {

class Connection;
class StoredTable;

/// A statement borrowed from a table's pool; returned, reset, by the destructor.
class StatementLease {
  public:
    StatementLease() = default;
    StatementLease(StoredTable* table, quint64 shape, Statement statement);
    ~StatementLease();
    StatementLease(StatementLease&& other) noexcept;
    StatementLease& operator=(StatementLease&& other) noexcept;

    Statement* operator->() { return &m_statement; }
    Statement& operator*() { return m_statement; }
    const Statement* operator->() const { return &m_statement; }
    explicit operator bool() const { return m_table != nullptr; }

  private:
    StoredTable* m_table = nullptr;
    quint64 m_shape = 0;
    Statement m_statement;
};

/// What a scan reads and in which order. Statements of the same shape share a pool.
struct ScanShape {
    enum class Bounds {
        None,   ///< whole table
        Range,  ///< parameters 1 and 2: image >= ?1 and image < ?2
        Equal   ///< parameter 1: image = ?1 (of the whole key)
    };
    int key = -1;  ///< -1: by id
    Bounds bounds = Bounds::None;
    bool backward = false;
    bool imageOnly = false;  ///< column 1 is the key's image instead of the record
    bool limited = false;    ///< parameter 3: number of rows
    bool offset = false;     ///< with limited: parameter 4: rows to skip
};

/// The stored records of one table on one connection. All writes go through write().
class StoredTable {
  public:
    /// @throws DataError(Damaged) if the stored table is missing or has other keys.
    StoredTable(Connection& connection, TableDescription description);
    StoredTable(const StoredTable&) = delete;
    StoredTable& operator=(const StoredTable&) = delete;

    const QString& name() const { return m_description.name; }
    int number() const { return m_description.number; }
    const RecordLayout& layout() const { return m_description.layout; }
    const std::vector<KeyDef>& keys() const { return m_description.keys; }
    const KeyImage& image(int key) const { return m_images[static_cast<size_t>(key)]; }
    /// A record whose fields are all empty.
    const QByteArray& emptyRecord() const { return m_emptyRecord; }
    Connection& connection() const { return m_connection; }

    /// Rows: column 0 the id, column 1 the record (or image).
    StatementLease scan(const ScanShape& shape);
    /// Shows the records from `first` on in id order until `see` returns false or throws.
    void visit(RecordId first, std::function<bool(RecordId, QByteArrayView)> see);
    /// The same with the images of a key, in its order, after an entry.
    void visitImages(int key, const TableFile::KeyEntry& after,
                     std::function<bool(RecordId, QByteArrayView)> see);
    /// @throws DataError(Damaged) if an image has not the key's length.
    void checkImage(int key, QByteArrayView image) const;
    /// Records with image ?1 and an id above ?2 (backward: below), at most ?3.
    StatementLease scanSameKey(int key, bool backward);
    /// Number of records with an image >= low and < high.
    qint64 countImages(int key, const QByteArray& low, const QByteArray& high);
    /// Number of records with this image and an id below (`below`) or above the given one.
    qint64 countSameKey(int key, const QByteArray& image, RecordId id, bool below);
    /// Greater than every image of a key.
    const QByteArray& topImage(int key) const { return m_topImages[static_cast<size_t>(key)]; }

    /// Returns the record after checking its length. @throws DataError(Damaged).
    QByteArrayView checked(QByteArrayView record) const;
    std::optional<QByteArray> read(RecordId id);
    qint64 count();
    /// Upper estimate of the number of records: the largest id.
    qint64 estimatedCount();

    // Writing: only within Connection::write.
    /// Assigns the next number to an auto-increment field that is 0 (in `record`).
    RecordId insert(QByteArray& record);
    /// Inserts a copied record under the id that it has elsewhere; not while a run is recorded.
    void insertAs(RecordId id, const QByteArray& record);
    void update(RecordId id, const QByteArray& before, const QByteArray& after);
    void remove(RecordId id, const QByteArray& before);

    /// The record for error messages: the values of its first key's fields.
    QString describe(const QByteArray& record) const;

  private:
    friend class StatementLease;

    /// All writes of records. Without `before` the record is inserted and `id` set; without `after`
    /// it is deleted.
    void write(RecordId& id, const QByteArray* before, const QByteArray* after);
    void writeNew(RecordId& id, const QByteArray& record);
    void writeChange(RecordId id, const QByteArray& before, const QByteArray& after);
    void writeRemoval(RecordId id);
    void numberRecord(QByteArray& record);
    [[noreturn]] void throwDuplicate(const DataError& error, const QByteArray& record) const;

    void checkStored() const;
    StatementLease lease(quint64 shape, const std::function<QByteArray()>& text);
    void returnStatement(quint64 shape, Statement statement);
    QByteArray scanText(const ScanShape& shape) const;

    Connection& m_connection;
    TableDescription m_description;
    QByteArray m_stored;  // quoted name of the SQLite table
    std::vector<KeyImage> m_images;
    std::vector<QByteArray> m_topImages;
    QByteArray m_emptyRecord;
    std::vector<int> m_autoIncrements;  // fields
    std::unordered_map<quint64, std::vector<Statement>> m_pool;
};

/// SQL that creates a table of a new company, with its indexes.
std::vector<QByteArray> creationSql(const TableDescription& table);

/// Name of a key's index and the SQL that creates it; `stored` as storedName() returns it.
QString keyIndexName(const QString& stored, int key);
QByteArray keyIndexSql(const QString& stored, int key, bool unique);

/// Table of next ids, for tables whose last record was deleted: ids are not reused.
inline constexpr char kIdsTable[] = "zdb_ids";

}  // namespace engines::embedded
