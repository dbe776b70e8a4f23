#include "tools/zavdb/table_import.h"

#include <QFile>
#include <algorithm>

#include "data/record/plain_text.h"
#include "data/record/record_codec.h"
#include "data/windows1252.h"
#include "platform/csv.h"
#include "tools/zavdb/catalogue_check.h"
#include "tools/zavdb/command.h"
#include "tools/zavdb/table_copy.h"

namespace tools {

namespace {

using data::TFieldCacheItem;

constexpr qsizetype kShownValue = 300;  // longer than any text field except memos

/// The value for an error message: no line breaks, memos truncated.
QString shown(QString value) {
    if (value.size() > kShownValue)
        value = value.left(kShownValue) + QStringLiteral("...");
    for (QChar& c : value)
        if (c < u' ')
            c = u'\u00B7';
    return u'"' + value + u'"';
}

bool sharesBytes(const TFieldCacheItem& a, const TFieldCacheItem& b) {
    return a.offset < b.offset + b.storedLength && b.offset < a.offset + a.storedLength;
}

/// Whether the cell equals the exported empty value: most cells of a wide table do.
bool isEmptyCell(const TFieldCacheItem& field, QByteArrayView cell) {
    if (cell.isEmpty())
        return true;
    if (cell.size() != 1 || cell[0] != '0')
        return false;
    switch (field.kind()) {
        case data::Kind::Boolean:
        case data::Kind::SmallInt:
        case data::Kind::Integer:
        case data::Kind::Unsigned:
        case data::Kind::LargeInt:
        case data::Kind::Float:
            return true;
        default:
            return false;
    }
}

class Importer {
  public:
    Importer(data::TableFile& records, QString fileName, QIODevice& file)
        : m_records(records),
          m_layout(records.layout()),
          m_fileName(std::move(fileName)),
          m_reader(file) {}

    qint64 run() {
        readHeader();
        prepareEmptyRecord();
        qint64 rows = 0;
        while (m_reader.next()) {
            if (m_reader.isBlank())
                continue;
            insertRow();
            ++rows;
        }
        return rows;
    }

  private:
    struct Column {
        int cell = 0;
        const TFieldCacheItem* field = nullptr;
        bool shared = false;  // shares bytes with another field
    };

    [[noreturn]] void fail(const QString& what) const {
        throw CommandError(
            QStringLiteral("%1, line %2: %3").arg(m_fileName).arg(m_reader.line()).arg(what));
    }

    QString text(int cell, const QString& field) const {
        QString result;
        if (!platform::decodeUtf8(m_reader.field(cell), result))
            fail(QStringLiteral("field %1: the text is not valid UTF-8: %2")
                     .arg(field, shown(data::fromWindows1252(m_reader.field(cell).toByteArray()))));
        return result;
    }

    void readHeader() {
        if (!m_reader.next())
            fail(QStringLiteral("the header row with the field names is missing"));
        std::vector<bool> seen(static_cast<size_t>(m_layout.fieldCount()), false);
        for (int cell = 0; cell < m_reader.fieldCount(); ++cell) {
            const QString name = text(cell, QString::number(cell + 1));
            const int index = m_layout.indexOf(name);
            if (index < 0)
                fail(QStringLiteral("table %1 has no field %2")
                         .arg(m_layout.tableName(), shown(name)));
            if (seen[static_cast<size_t>(index)])
                fail(QStringLiteral("the header names field %1 twice").arg(shown(name)));
            seen[static_cast<size_t>(index)] = true;
            m_columns.push_back({cell, &m_layout.field(index), false});
        }
        for (Column& column : m_columns)
            column.shared = std::any_of(m_layout.fields().begin(), m_layout.fields().end(),
                                        [&](const TFieldCacheItem& other) {
                                            return other.number != column.field->number &&
                                                   sharesBytes(*column.field, other);
                                        });
        // If fields share bytes, the later write wins: whole fields first, then a given
        // auto-increment number, named bits last.
        const auto rank = [](const Column& column) {
            const data::Storage storage = column.field->storage;
            return storage == data::Storage::Bit             ? 2
                   : storage == data::Storage::AutoIncrement ? 1
                                                             : 0;
        };
        std::sort(m_columns.begin(), m_columns.end(), [&](const Column& a, const Column& b) {
            return std::pair(rank(a), a.field->number) < std::pair(rank(b), b.field->number);
        });
    }

    void prepareEmptyRecord() {
        m_empty = QByteArray(m_layout.recordLength(), '\0');
        for (const TFieldCacheItem& field : m_layout.fields())
            data::clearField(field, reinterpret_cast<uchar*>(m_empty.data()));
    }

    void insertRow() {
        if (static_cast<size_t>(m_reader.fieldCount()) != m_columns.size())
            fail(QStringLiteral("the row has %1, the header %2")
                     .arg(counted(m_reader.fieldCount(), QStringLiteral("field")))
                     .arg(m_columns.size()));
        QByteArray record = m_empty;
        auto* bytes = reinterpret_cast<uchar*>(record.data());
        for (const Column& column : m_columns)
            setField(column, bytes);
        try {
            m_records.insert(record);
        } catch (const data::DataError& error) {
            if (error.kind() == data::ErrorKind::DuplicateKey)
                fail(duplicateText(record));
            if (error.kind() == data::ErrorKind::BadValue)
                fail(error.detail());
            throw;
        }
    }

    void setField(const Column& column, uchar* record) const {
        const TFieldCacheItem& field = *column.field;
        const bool empty = isEmptyCell(field, m_reader.field(column.cell));
        if (empty && (!column.shared || field.storage == data::Storage::AutoIncrement))
            return;
        if (data::writePlainText(field, record, m_reader.field(column.cell)))
            return;
        const QString cell = text(column.cell, field.name);
        data::Value value;
        QString why;
        if (!data::textToValue(field, cell, value, &why))
            fail(QStringLiteral("field %1, value %2: %3").arg(field.name, shown(cell), why));
        data::writeValue(field, record, value, m_layout.tableName());
    }

    /// Names the unique key that already has the value; the engine's error does not.
    QString duplicateText(const QByteArray& record) {
        const auto* bytes = reinterpret_cast<const uchar*>(record.constData());
        for (const data::KeyDef& key : m_records.keys()) {
            if (!key.unique)
                continue;
            data::KeyValues values;
            QStringList names;
            QStringList texts;
            for (const data::KeySegment& segment : key.segments) {
                const TFieldCacheItem& field = m_layout.field(segment.fieldIndex);
                values.push_back(data::readValue(field, bytes));
                names.append(field.name);
                texts.append(shown(data::valueToText(field, values.back())));
            }
            if (!m_records.seek(key.number, data::SeekOp::Equal, values, 1).empty())
                return QStringLiteral("key %1 (%2): the table has %3 already")
                    .arg(key.number)
                    .arg(names.join(QStringLiteral(", ")), texts.join(QStringLiteral(", ")));
        }
        return QStringLiteral("a unique key has this row's value already");
    }

    data::TableFile& m_records;
    const data::RecordLayout& m_layout;
    QString m_fileName;
    platform::CsvReader m_reader;
    std::vector<Column> m_columns;  // in the order of writing
    QByteArray m_empty;
};

}  // namespace

qint64 importTable(data::Database& database, const QString& table, const QString& fileName,
                   bool replace) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw CommandError(
            QStringLiteral("%1 cannot be read: %2").arg(fileName, file.errorString()));
    const std::unique_ptr<data::TableFile> records = openTable(database, table);
    qint64 rows = 0;
    try {
        changeTable(database, *records, [&] {
            if (replace)
                removeAll(*records);
            rows = Importer(*records, fileName, file).run();
        });
    } catch (const platform::CsvError& error) {
        throw CommandError(fileName + QStringLiteral(", ") + QString::fromUtf8(error.what()));
    }
    return rows;
}

}  // namespace tools
