#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "data/engine/engine.h"

namespace data {

class TtbTable;
class Filter;
class KeyView;

/// Database name under which the program opens all tables.
inline const QString kDdfDatabase = QStringLiteral("ddf");

/// One field of an open record table: name, kind and accessors. Valid until the table is closed.
/// Reading needs a current record, writing needs edit or insert mode.
class TField {
  public:
    const QString& fieldName() const { return m_name; }
    Kind kind() const { return m_kind; }
    int size() const { return m_size; }  ///< characters of a string, bytes otherwise

    /// 0 for an empty field; floats are truncated, texts are parsed (0 if not a number)
    qint64 asInteger() const;
    double asFloat() const;
    QString asString() const;  ///< as valueToText, without the display format
    bool asBoolean() const;
    QDate asDate() const;  ///< invalid when empty
    Value value() const;
    /// The text for windows: numbers with the display format ("#0.00" and the like, locale's
    /// decimal separator), dates dd.mm.yyyy, booleans as the display values.
    QString displayText() const;
    /// The same for another record's bytes; not for calculated fields.
    QString displayText(const QByteArray& record) const;

    void setInteger(qint64 value);
    void setFloat(double value);
    void setString(const QString& value);
    void setBoolean(bool value);
    void setDate(const QDate& value);
    void setValue(const Value& value);  ///< @throws DataError(BadValue) naming table, field, value

    void setDisplayFormat(const QString& format) { m_displayFormat = format; }
    const QString& displayFormat() const { return m_displayFormat; }
    /// Texts for true and false, separated by a semicolon ("K;E").
    void setDisplayValues(const QString& values) { m_displayValues = values; }

  private:
    friend class TtbTable;
    const uchar* record() const;  // bytes read by the accessors
    QString shownText(const Value& shown) const;
    uchar* editedRecord();

    TtbTable* m_table = nullptr;
    TFieldCacheItem m_item;  // from the layout, or the equivalent of a calculated field
    QString m_name;
    Kind m_kind = Kind::String;
    int m_size = 0;
    QString m_displayFormat;
    QString m_displayValues;
    std::function<Value(const TtbTable&)> m_calculate;
};

/// A persistent field: declared before open, so that only the listed fields exist, in this order
/// and with these display formats. With `calculate` it is a calculated field of the given kind.
struct FieldDeclaration {
    QString name;
    QString displayFormat = {};
    Kind calculatedKind = Kind::String;
    int calculatedSize = 0;
    std::function<Value(const TtbTable&)> calculate = {};
};

enum class TableState { Closed, Browse, Edit, Insert };

/// Position of a record. Valid while the record exists, also after refresh and in another TtbTable
/// on the same table.
struct Bookmark {
    RecordId id = 0;
    QByteArray record;  ///< bytes when taken: their key gives the position of a deleted record
    bool isValid() const { return id != 0; }
};

/// A navigational dataset over one table: keyed search, ranges, filters, edit and post.
/// After every navigation call either a record is current (eof() and bof() tell whether the last
/// step hit an end), or the view is empty and both eof() and bof() are true. The current record and
/// records read ahead are copies: changes by others (including this program's SQL) show after
/// refresh() or edit(). The table's own writes always show. Nothing stays open in the engine
/// between calls, so writes during a walk are safe: a record posted under a new key value is
/// visited again if its new position lies ahead.
/// All failures throw DataError; a failed call leaves the current record and state unchanged. While
/// a record is edited or inserted, navigation throws DataError(Engine): post or cancel first.
class TtbTable {
  public:
    TtbTable();
    ~TtbTable();
    TtbTable(const TtbTable&) = delete;
    TtbTable& operator=(const TtbTable&) = delete;

    // --- what to open: set while closed
    void setDatabase(Database* database);
    void setDatabaseName(const QString& name) { m_databaseName = name; }
    const QString& databaseName() const { return m_databaseName; }
    /// May end in ";OWNER:name", which engines without owner names ignore.
    void setTableName(const QString& name);
    const QString& tableName() const { return m_tableName; }
    void setFieldDeclarations(std::vector<FieldDeclaration> declarations);

    /// Opens on the current index (default "0") and moves to its first record.
    void open();
    void close();
    bool isOpen() const { return m_state != TableState::Closed; }
    TableState state() const { return m_state; }

    // --- keys
    /// Selects the index by its number as text. The current record stays current; a range is
    /// cancelled.
    /// @throws DataError(NoSuchField) if the table has no such index.
    void setIndexName(const QString& number);
    const QString& indexName() const { return m_indexName; }
    QStringList indexNames() const;   ///< "0", "1", ...
    QStringList indexFields() const;  ///< of the current index
    QStringList indexFields(const QString& number) const;

    /// Exact search on the leading key fields, within range and filter. @return false, leaving the
    /// current record unchanged, if there is none.
    bool findKey(const KeyValues& values);
    /// Moves to the first record with leading key fields >= values, or to the last record with
    /// eof() if there is none. @return whether a record with exactly these values was found.
    bool findNearest(const KeyValues& values);

    /// Restricts to low <= leading key fields <= high on the current index and moves to the first
    /// record. Applies until cancelRange(), across edits and posts.
    void setRange(const KeyValues& low, const KeyValues& high);
    void cancelRange();  ///< the current record stays current
    bool hasRange() const;

    // --- walking
    // first() and last() leave eof() and bof() false if there is a record, so that `while (!eof())`
    // and `while (!bof())` visit all records.
    void first();
    void last();
    void next();
    void prior();
    bool eof() const { return m_eof; }
    bool bof() const { return m_bof; }
    bool isEmpty() const { return !m_current.has_value(); }
    /// Records of the table, ignoring range and filter.
    qint64 recordCount() const;

    // --- fields
    TField& fieldByName(const QString& name);  ///< case-insensitive; @throws DataError(NoSuchField)
    const TField& fieldByName(const QString& name) const;
    TField* findField(const QString& name);  ///< nullptr instead of an error
    const TField* findField(const QString& name) const;
    const std::vector<std::unique_ptr<TField>>& fields() const { return m_fields; }
    const RecordLayout& layout() const;
    const std::vector<KeyDef>& keys() const;

    // --- changing
    /// How long edit() waits for another program's lock; default 2000 ms.
    void setLockWait(std::chrono::milliseconds wait) { m_lockWait = wait; }
    /// Locks and rereads the current record; no effect in edit mode. @throws DataError(Locked)
    /// after the wait, Gone if the record was deleted.
    void edit();
    /// As edit(), but returns false if another program holds the record.
    bool tryEdit(std::chrono::milliseconds wait);
    void insert();  ///< starts an empty record
    void append() { insert(); }
    /// Writes and commits the record, releases the lock and returns to browsing; the record stays
    /// current. On failure the table stays in edit mode: post again or cancel().
    void post();
    void cancel();  ///< back to browsing; the record as stored
    /// Inserts and posts one record; values in field order (invalid: left empty).
    void insertRecord(const std::vector<Value>& values);
    /// Deletes the current record; the next (at the end: the previous) becomes current.
    void deleteRecord();

    // --- refresh, bookmarks
    /// Rereads the current record; if it is gone, the nearest following one becomes current.
    void refresh();
    Bookmark bookmark() const;
    /// @return false, leaving the current record unchanged, if the record is gone or outside the
    /// view.
    bool gotoBookmark(const Bookmark& mark);

    // --- filter
    /// A filter expression (data/record/filter.h), in effect while filtered() is on.
    /// @throws DataError(Syntax) with the position; the previous filter stays.
    void setFilter(const QString& expression);
    const QString& filter() const { return m_filterText; }
    void setFiltered(bool on);
    bool filtered() const { return m_filtered; }

    /// The current record's bytes.
    const QByteArray& recordBytes() const;
    RecordId recordId() const;
    TableFile& file();

  private:
    friend class TField;
    void requireOpen() const;
    void requireBrowsing() const;
    void requireRecord() const;
    void requireEditing() const;
    [[noreturn]] void refuse(const QString& why) const;
    const KeyDef* findIndex(const QString& number) const;
    const KeyDef& currentIndex() const;
    KeyValues fitted(const KeyValues& values, bool* cut = nullptr) const;
    void buildFields();
    const QByteArray& readBytes() const;
    void updateAcceptance();
    void changeView(bool keep, const std::function<void(bool undo)>& change);
    void place(std::optional<StoredRecord> record, bool atEof, bool atBof);
    bool step(Direction direction);
    bool beginEdit(std::chrono::milliseconds wait);
    void releaseLock() noexcept;

    Database* m_database = nullptr;
    QString m_databaseName = kDdfDatabase;
    QString m_tableName;
    QString m_indexName = QStringLiteral("0");
    std::vector<FieldDeclaration> m_declarations;
    std::unique_ptr<TableFile> m_file;
    std::unique_ptr<KeyView> m_view;
    std::vector<std::unique_ptr<TField>> m_fields;
    QHash<QString, TField*> m_byName;  // folded name
    TableState m_state = TableState::Closed;
    std::optional<StoredRecord> m_current;
    QByteArray m_buffer;  // the record while editing or inserting
    bool m_eof = true;
    bool m_bof = true;
    std::optional<RecordId> m_locked;
    std::chrono::milliseconds m_lockWait{2000};
    QString m_filterText;
    std::unique_ptr<Filter> m_filter;
    bool m_filtered = false;
};

}  // namespace data
