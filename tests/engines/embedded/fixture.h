#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <memory>

#include "data/record/record_codec.h"
#include "engines/embedded/embedded_database.h"

namespace test {

/// An empty company of all tables in a temporary folder, open for records and SQL.
class EmbeddedCompany : public ::testing::Test {
  protected:
    void SetUp() override {
        engines::createEmbedded(folder(), data::allTableSources());
        db = engines::openEmbedded(QStringLiteral("KOE"), folder());
    }

    QString folder() const { return m_folder.path(); }
    QString file() const { return m_folder.filePath(engines::kEmbeddedFileName); }

    /// Rows of a statement: columns joined by '|', NULL as "NULL".
    QStringList rows(const QString& sql,
                     const std::vector<std::pair<QString, data::Value>>& with = {},
                     data::Database* on = nullptr) {
        auto statement = (on != nullptr ? on : db.get())->prepare(sql);
        for (const auto& [name, value] : with)
            statement->bind(name, value);
        QStringList lines;
        while (statement->step()) {
            QStringList cells;
            for (size_t i = 0; i < statement->columns().size(); ++i) {
                const data::Value value = statement->value(static_cast<int>(i));
                cells.append(!value.isValid() ? QStringLiteral("NULL")
                             : value.typeId() == QMetaType::Double
                                 ? data::shortestText(value.toDouble())
                                 : value.toString());
            }
            lines.append(cells.join(QLatin1Char('|')));
        }
        return lines;
    }

    qint64 run(const QString& sql, const std::vector<std::pair<QString, data::Value>>& with = {},
               data::Database* on = nullptr) {
        auto statement = (on != nullptr ? on : db.get())->prepare(sql);
        for (const auto& [name, value] : with)
            statement->bind(name, value);
        return statement->execute();
    }

    std::unique_ptr<data::Database> db;

  private:
    QTemporaryDir m_folder;
};

/// The error of a call that must throw DataError.
template <typename Call>
data::DataError errorOf(Call call) {
    try {
        call();
    } catch (const data::DataError& error) {
        return error;
    }
    ADD_FAILURE() << "no error was thrown";
    return data::DataError(data::ErrorKind::Engine, QString(), QStringLiteral("none"));
}

/// Sets one field of a record by name.
inline void setField(const data::RecordLayout& layout, QByteArray& record, const char* name,
                     const data::Value& value) {
    data::writeValue(layout.field(layout.indexOf(QLatin1String(name))),
                     reinterpret_cast<uchar*>(record.data()), value, layout.tableName());
}

inline data::Value fieldOf(const data::RecordLayout& layout, const QByteArray& record,
                           const char* name) {
    return data::readValue(layout.field(layout.indexOf(QLatin1String(name))),
                           reinterpret_cast<const uchar*>(record.constData()));
}

}  // namespace test
