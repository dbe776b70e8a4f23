#include "company/run_mark.h"

#include "company/company.h"
#include "data/sql/uni_query.h"

namespace company {

namespace {

// The key is fixed: the change of 1 September 2024, whatever the date.
const QString kSelect = QStringLiteral(
    "select data from ini where ininimi='ZAV.INI' AND sektio='TAKSAVAIHE' AND AVAIN='20240901'");
const QString kDelete = QStringLiteral(
    "delete from ini where ininimi='ZAV.INI' AND sektio='TAKSAVAIHE' AND AVAIN='20240901'");
const QString kInsert =
    QStringLiteral("insert into ini values ( 'ZAV.INI', 'TAKSAVAIHE', '20240901','%1' )");
const QString kUpdate = QStringLiteral(
    "update ini set data = '%1' where ininimi='ZAV.INI' AND sektio='TAKSAVAIHE' AND "
    "AVAIN='20240901'");

qint64 execute(data::Database& database, const QString& statement) {
    data::TUniQuery query(&database);
    query.sql().add(statement);
    return query.execSql();
}

}  // namespace

bool ExecutionMarkExists(data::Database& database) {
    return !executionMarkText(database).isEmpty();
}

QString executionMarkText(data::Database& database) {
    data::TUniQuery query(&database);
    query.sql().add(kSelect);
    query.open();
    return query.eof() ? QString() : query.fieldByName(QStringLiteral("data")).asString();
}

int DeleteExecutionMark(data::Database& database) {
    return static_cast<int>(execute(database, kDelete));
}

void writeExecutionMark(data::Database& database, const QDateTime& when) {
    data::TUniQuery query(&database);
    query.sql().add(kSelect);
    query.open();
    const bool exists = !query.eof();
    query.close();
    execute(database,
            (exists ? kUpdate : kInsert).arg(when.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))));
}

bool programWritesMark(const QString& programFileName) {
    if (programFileName.compare(u"taksavaihe.exe", Qt::CaseInsensitive) == 0)
        return true;
#ifdef Q_OS_WIN
    return false;
#else
    return programFileName.compare(u"taksavaihe", Qt::CaseInsensitive) == 0;
#endif
}

}  // namespace company
