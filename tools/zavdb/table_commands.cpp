#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <cstdio>

#include "data/dictionary/dictionary_source.h"
#include "data/record/record_codec.h"
#include "platform/csv.h"
#include "tools/zavdb/command.h"
#include "tools/zavdb/field_listing.h"
#include "tools/zavdb/output_file.h"

namespace tools {

namespace {

int tables(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    const QStringList names = database->tableNames();
    qsizetype width = 0;
    for (const QString& name : names)
        width = std::max(width, name.size());
    for (const QString& name : names)
        printLine(QStringLiteral("%1  %2")
                      .arg(name, -width)
                      .arg(openTable(*database, name)->recordCount(), 9));
    return 0;
}

int fields(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    QTextStream(stdout) << fieldListing(*openTable(*database, arguments.at(1)));
    return 0;
}

int dictionary(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    QByteArray blocks;
    for (const QString& table : arguments.positional.sliced(1, arguments.count() - 2)) {
        const std::unique_ptr<data::TableFile> records = openTable(*database, table);
        blocks += data::compileBlock(records->layout().tableName(), describedFields(*records));
    }
    writeFile(arguments.positional.constLast(),
              [&blocks](QIODevice& output) { return output.write(blocks); });
    return 0;
}

QString resultText(const data::Value& value) {
    switch (value.typeId()) {
        case QMetaType::Double:
            return data::shortestText(value.toDouble());
        case QMetaType::QByteArray:
            return QString::fromLatin1(value.toByteArray().toHex());
        default:
            return value.toString();  // NULL is the empty text
    }
}

int sql(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    const std::unique_ptr<data::SqlStatement> statement = database->prepare(arguments.at(1));
    if (const QStringList parameters = statement->parameterNames(); !parameters.isEmpty())
        throw CommandError(
            QStringLiteral("The statement is refused: parameter \":%1\" has no value.")
                .arg(parameters.constFirst()));
    if (statement->columns().empty()) {
        printLine(QStringLiteral("%1 rows").arg(statement->execute()));
        return 0;
    }
    QFile output;
    if (!output.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw CommandError(QStringLiteral("Standard output cannot be written."));
    platform::CsvWriter writer(output);
    for (const data::SqlColumn& column : statement->columns())
        writer.add(column.name);
    writer.endRecord();
    const int columns = static_cast<int>(statement->columns().size());
    while (statement->step()) {
        for (int i = 0; i < columns; ++i)
            writer.add(resultText(statement->value(i)));
        writer.endRecord();
    }
    writer.flush();
    return 0;
}

}  // namespace

std::vector<Command> tableCommands() {
    return {
        {QStringLiteral("tables"),
         QStringLiteral("NAME"),
         QStringLiteral("Lists the company's tables with their record counts"),
         QString(),
         1,
         1,
         {},
         tables},
        {QStringLiteral("fields"),
         QStringLiteral("NAME TABLE"),
         QStringLiteral("Lists a table's fields and keys"),
         QStringLiteral("A field's line tells its number, name, kind, size, offset in the record, "
                        "stored length, storage type and bit mask."),
         2,
         2,
         {},
         fields},
        {QStringLiteral("dictionary"),
         QStringLiteral("NAME TABLE... FILE"),
         QStringLiteral("Writes a compiled dictionary of tables from the company's catalogue"),
         QStringLiteral(
             "The file holds one block a table; the programs read it as their separately "
             "loaded dictionary."),
         3,
         1000,
         {},
         dictionary},
        {QStringLiteral("sql"),
         QStringLiteral("NAME \"STATEMENT\""),
         QStringLiteral("Runs one SELECT, INSERT, UPDATE or DELETE on the company"),
         QStringLiteral(
             "Rows come out as CSV with a header, other statements as the number of rows "
             "that they changed."),
         2,
         2,
         {},
         sql},
    };
}

}  // namespace tools
