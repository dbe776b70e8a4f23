#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <memory>

#include "engines/embedded/embedded_database.h"
#include "tests/support/checks.h"
#include "tests/support/sql.h"

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

    QStringList rows(const QString& sql) { return test::rows(*db, sql); }
    qint64 run(const QString& sql, const Parameters& with = {}) {
        return test::exec(*db, sql, with);
    }

    std::unique_ptr<data::Database> db;

  private:
    QTemporaryDir m_folder;
};

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
