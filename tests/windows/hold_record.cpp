// Locks one record, as editing it does, to test other programs against the lock.
// Usage: hold_record COMPANY TABLE KEY FILE: creates FILE once the record is locked, and unlocks it
// when FILE is removed.

#include <QCoreApplication>
#include <QFile>
#include <QThread>
#include <cstdio>

#include "company/company.h"
#include "company/connection_module.h"
#include "data/table/tb_table.h"

namespace {

constexpr int kPauseMs = 50;
constexpr int kLongestMs = 180'000;

int fail(const QString& text) {
    std::fprintf(stderr, "hold_record: %s\n", qUtf8Printable(text));
    return 1;
}

int hold(const QString& tableName, const QString& key, const QString& fileName) {
    data::TtbTable table;
    company::openCompanyTable(table, tableName);
    table.open();
    if (!table.findKey({key}))
        return fail(QStringLiteral("no record ") + key);
    table.edit();
    QFile heldFile(fileName);
    if (!heldFile.open(QIODevice::WriteOnly))
        return fail(fileName + QStringLiteral(": ") + heldFile.errorString());
    heldFile.close();
    for (int waited = 0; heldFile.exists() && waited < kLongestMs; waited += kPauseMs)
        QThread::msleep(kPauseMs);
    table.cancel();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList parameters = QCoreApplication::arguments();
    if (parameters.size() != 5)
        return fail(QStringLiteral("usage: hold_record COMPANY TABLE KEY FILE"));
    try {
        if (!company::takeIntoUse(parameters[1]))
            return fail(QStringLiteral("no company ") + parameters[1]);
        const int status = hold(parameters[2], parameters[3], parameters[4]);
        company::TZavDbConnectionModule::shutDown();
        return status;
    } catch (const std::exception& e) {
        return fail(QString::fromUtf8(e.what()));
    }
}
