#include "tools/zavdb/sequential_transfer.h"

#include <QFile>

#include "data/record/field_check.h"
#include "tools/zavdb/catalogue_check.h"
#include "tools/zavdb/command.h"
#include "tools/zavdb/progress.h"
#include "tools/zavdb/sequential_file.h"

namespace tools {

namespace {

constexpr int kBatch = 500;

/// Length of the shortest record that a data file of this layout may contain.
int shortestRecord(const data::RecordLayout& layout) {
    for (const data::TFieldCacheItem& field : layout.fields()) {
        const bool isVariable =
            field.storage == data::Storage::Note || field.storage == data::Storage::LVar;
        if (isVariable && field.offset + field.storedLength == layout.recordLength())
            return field.offset;
    }
    return layout.recordLength();
}

class Loader {
  public:
    Loader(data::TableFile& records, QString fileName, QIODevice& file)
        : m_records(records),
          m_fileName(std::move(fileName)),
          m_size(file.size()),
          m_reader(file, shortestRecord(records.layout()), records.layout().recordLength()) {}

    LoadResult run() {
        LoadResult result;
        while (readNext()) {
            insert();
            m_progress.show(QStringLiteral("record %1, byte").arg(m_reader.number()),
                            m_reader.offset(), m_size);
            ++result.records;
        }
        result.hasEndMark = m_reader.hasEndMark();
        return result;
    }

  private:
    bool readNext() {
        try {
            return m_reader.next();
        } catch (const SequentialFileError& error) {
            throw CommandError(
                QStringLiteral("%1, %2").arg(m_fileName, QString::fromUtf8(error.what())));
        }
    }

    /// Refuses what no import takes either: a price that is not a number makes every further one
    /// such.
    void checkNumbers(const QByteArray& record) const {
        for (const data::TFieldCacheItem& field : m_records.layout().fields()) {
            const QString problem =
                data::numberProblem(field, reinterpret_cast<const uchar*>(record.constData()));
            if (!problem.isEmpty())
                throw CommandError(QStringLiteral("%1, record %2, byte %3: field %4 of table %5 is "
                                                  "%6; correct the file")
                                       .arg(m_fileName)
                                       .arg(m_reader.number())
                                       .arg(m_reader.offset())
                                       .arg(field.name, m_records.layout().tableName(), problem));
        }
    }

    void insert() {
        QByteArray record = m_reader.bytes();
        record.resize(m_records.layout().recordLength(), '\0');
        checkNumbers(record);
        try {
            m_records.insert(record);
        } catch (const data::DataError& error) {
            if (error.kind() != data::ErrorKind::DuplicateKey &&
                error.kind() != data::ErrorKind::BadValue)
                throw;
            throw CommandError(QStringLiteral("%1, record %2, byte %3: %4")
                                   .arg(m_fileName)
                                   .arg(m_reader.number())
                                   .arg(m_reader.offset())
                                   .arg(error.english()));
        }
    }

    data::TableFile& m_records;
    QString m_fileName;
    qint64 m_size;
    SequentialReader m_reader;
    Progress m_progress;
};

}  // namespace

LoadResult loadTable(data::Database& database, const QString& table, const QString& fileName) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw CommandError(
            QStringLiteral("%1 cannot be read: %2").arg(fileName, file.errorString()));
    const std::unique_ptr<data::TableFile> records = openTable(database, table);
    LoadResult result;
    changeTable(database, *records, [&] { result = Loader(*records, fileName, file).run(); });
    return result;
}

qint64 saveTable(data::TableFile& records, QIODevice& output) {
    SequentialWriter writer(output);
    Progress progress;
    const qint64 total = records.recordCount();
    qint64 saved = 0;
    const auto write = [&](data::RecordId, const QByteArray& bytes) {
        writer.add(bytes);
        progress.show(records.layout().tableName(), ++saved, total);
        return true;
    };
    if (records.keys().empty()) {
        std::optional<data::RecordId> at;
        do {
            at = records.visitStored(at, kBatch, write);
        } while (at);
    } else {
        std::optional<data::StoredRecord> at;
        do {
            at = records.visit(0, at, data::Direction::Forward, kBatch, write);
        } while (at);
    }
    writer.finish();
    return saved;
}

}  // namespace tools
