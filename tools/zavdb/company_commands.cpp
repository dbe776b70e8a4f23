#include <QFileInfo>
#include <algorithm>

#include "company/aliases.h"
#include "company/backup.h"
#include "company/registration.h"
#include "data/dictionary/dictionary_source.h"
#include "engines/embedded/embedded_database.h"
#include "tools/zavdb/command.h"
#include "tools/zavdb/company_builder.h"
#include "tools/zavdb/demo/demo_company.h"
#include "tools/zavdb/progress.h"

namespace tools {

namespace {

const QString kWithout = QStringLiteral("without");
const QString kProducts = QStringLiteral("products");
const QString kSeed = QStringLiteral("seed");
const QString kUnchecked = QStringLiteral("unchecked");

constexpr int kProductsWorthWatching = 20000;

// Tables without which a company is unusable: the catalogue and those read by every run.
const QStringList kEssentialTables = {
    QStringLiteral("X$File"), QStringLiteral("X$Field"), QStringLiteral("X$Index"),
    QStringLiteral("TUOTE"),  QStringLiteral("TRYHMA"),  QStringLiteral("ALVKANTA"),
    QStringLiteral("INI"),    QStringLiteral("ASRYHMA"), QStringLiteral("HINTATASO"),
};

bool sameTable(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

std::vector<data::TableSource> tablesWithout(const QStringList& leftOut) {
    std::vector<data::TableSource> tables = data::allTableSources();
    for (const QString& name : leftOut) {
        for (const QString& essential : kEssentialTables)
            if (sameTable(essential, name))
                throw CommandError(
                    QStringLiteral("Table %1 cannot be left out: no company works without it.")
                        .arg(essential));
        if (std::none_of(tables.begin(), tables.end(),
                         [&](const data::TableSource& t) { return sameTable(t.name, name); }))
            throw CommandError(QStringLiteral("There is no table \"%1\" to leave out.").arg(name));
    }
    std::erase_if(tables, [&leftOut](const data::TableSource& table) {
        return leftOut.contains(table.name, Qt::CaseInsensitive);
    });
    return tables;
}

int createCompany(const Arguments& arguments) {
    buildCompany(arguments.at(0), arguments.at(1), tablesWithout(arguments.options.value(kWithout)),
                 nullptr);
    return 0;
}

qint64 number(const Arguments& arguments, const QString& option, qint64 fallback, qint64 lowest,
              qint64 highest) {
    if (!arguments.has(option))
        return fallback;
    const QString text = arguments.options.value(option).constLast();
    bool ok = false;
    const qint64 value = text.toLongLong(&ok);
    if (!ok || value < lowest || value > highest)
        throw UsageError(QStringLiteral("--%1 takes a whole number from %2 to %3, not \"%4\".")
                             .arg(option)
                             .arg(lowest)
                             .arg(highest)
                             .arg(text));
    return value;
}

int createDemo(const Arguments& arguments) {
    demo::Options options;
    options.products = static_cast<int>(
        number(arguments, kProducts, options.products, demo::kMinProducts, demo::kMaxProducts));
    options.seed = static_cast<quint64>(
        number(arguments, kSeed, static_cast<qint64>(options.seed), 0, INT64_MAX));
    demo::Progress progress = [](const QString&, qint64) {};
    if (options.products >= kProductsWorthWatching)
        progress = [](const QString& table, qint64 rows) {
            printError(QStringLiteral("%1: %2").arg(table, counted(rows, QStringLiteral("row"))));
        };
    buildCompany(arguments.at(0), arguments.at(1), data::allTableSources(),
                 [&](data::Database& database) { demo::fill(database, options, progress); });
    return 0;
}

/// A company's line stays one line with one tab: control characters as "\n" or "\x1B".
QString onOneLine(const QString& text) {
    QString line;
    for (const QChar c : text) {
        if (c == u'\n')
            line += QStringLiteral("\\n");
        else if (c == u'\r')
            line += QStringLiteral("\\r");
        else if (c == u'\t')
            line += QStringLiteral("\\t");
        else if (c.category() == QChar::Other_Control)
            line += QStringLiteral("\\x%1").arg(uint{c.unicode()}, 2, 16, QLatin1Char('0'));
        else
            line += c;
    }
    return line;
}

int listCompanies(const Arguments&) {
    for (const QString& name : company::aliasNames()) {
        const std::optional<company::Alias> alias = company::findAlias(name);
        printLine(onOneLine(name) + u'\t' + onOneLine(alias ? alias->physicalName : QString()));
    }
    return 0;
}

int addCompany(const Arguments& arguments) {
    company::addCompany(arguments.at(0), arguments.at(1));
    return 0;
}

int forgetCompany(const Arguments& arguments) {
    companyFolder(arguments.at(0));
    company::removeAlias(arguments.at(0));
    return 0;
}

QString embeddedFolder(const QString& name) {
    QString folder = companyFolder(name);
    if (folder.isEmpty())
        throw CommandError(QStringLiteral("No data folder is registered for \"%1\".").arg(name));
    return folder;
}

company::BackupProgress shownProgress(Progress& progress) {
    return [&progress](company::BackupPhase phase, qint64 done, qint64 total) {
        const bool copying = phase == company::BackupPhase::Copying;
        progress.show(copying ? QStringLiteral("copying") : QStringLiteral("checking"), done,
                      total);
        return true;
    };
}

int backUp(const Arguments& arguments) {
    const QString folder = embeddedFolder(arguments.at(0));
    const QString target = QFileInfo(arguments.at(1)).absoluteFilePath();
    if (QFileInfo::exists(target))
        throw CommandError(QStringLiteral("%1 exists already.").arg(target));
    Progress progress;
    if (arguments.has(kUnchecked))
        engines::backupEmbedded(folder, target, {});
    else
        company::makeBackup(arguments.at(0), target, shownProgress(progress));
    return 0;
}

int restore(const Arguments& arguments) {
    embeddedFolder(arguments.at(0));
    const QString file = QFileInfo(arguments.at(1)).absoluteFilePath();
    if (!QFileInfo(file).isFile())
        throw CommandError(QStringLiteral("%1 is no file.").arg(file));
    QString kept;
    {
        Progress progress;
        kept = company::restoreBackup(arguments.at(0), file, shownProgress(progress));
    }
    printLine(QStringLiteral("Restored. The database from before is %1.").arg(kept));
    return 0;
}

int checkCompany(const Arguments& arguments) {
    const QString folder = embeddedFolder(arguments.at(0));
    const QStringList findings = engines::checkEmbedded(folder);
    for (const QString& finding : findings)
        printLine(finding);
    if (!findings.isEmpty()) {
        printError(counted(findings.size(), QStringLiteral("finding")));
        return 1;
    }
    const std::unique_ptr<data::Database> database = engines::openEmbedded(arguments.at(0), folder);
    qint64 records = 0;
    const QStringList tables = database->tableNames();
    for (const QString& table : tables)
        records += database->openTable(table)->recordCount();
    printLine(QStringLiteral("%1, %2: all is well.")
                  .arg(counted(tables.size(), QStringLiteral("table")),
                       counted(records, QStringLiteral("record"))));
    return 0;
}

}  // namespace

std::vector<Command> companyCommands() {
    const QString newCompany = QStringLiteral(
        "DIR is made when it is missing. Nothing is overwritten: a registered name or a folder "
        "that "
        "holds a company is an error, and a failure leaves nothing behind.");
    return {
        {QStringLiteral("create"),
         QStringLiteral("NAME DIR"),
         QStringLiteral("Makes a new, empty company in folder DIR and registers it as NAME"),
         newCompany,
         2,
         2,
         {QCommandLineOption(kWithout,
                             QStringLiteral("Leaves an optional table out; may be repeated."),
                             QStringLiteral("TABLE"))},
         createCompany},
        {QStringLiteral("demo"),
         QStringLiteral("NAME DIR"),
         QStringLiteral("Makes a company filled with the data of an invented Finnish retailer"),
         newCompany + QStringLiteral("\nThe same number of products and the same seed give the "
                                     "same data on every machine and day."),
         2,
         2,
         {QCommandLineOption(kProducts,
                             QStringLiteral("Number of products, %1 to %2 (default 2000).")
                                 .arg(demo::kMinProducts)
                                 .arg(demo::kMaxProducts),
                             QStringLiteral("N")),
          QCommandLineOption(kSeed, QStringLiteral("Seed of the data (default 1)."),
                             QStringLiteral("S"))},
         createDemo},
        {QStringLiteral("list"),
         QString(),
         QStringLiteral("Lists the registered companies with their folders"),
         QString(),
         0,
         0,
         {},
         listCompanies},
        {QStringLiteral("add"),
         QStringLiteral("NAME DIR"),
         QStringLiteral("Registers the company in folder DIR as NAME"),
         QString(),
         2,
         2,
         {},
         addCompany},
        {QStringLiteral("forget"),
         QStringLiteral("NAME"),
         QStringLiteral("Takes a company off the list; its files stay"),
         QString(),
         1,
         1,
         {},
         forgetCompany},
        {QStringLiteral("backup"),
         QStringLiteral("NAME FILE"),
         QStringLiteral("Copies the company's database to a new file, safe while it is in use"),
         QStringLiteral("Every record and key of the copy is checked as by \"check\"; a copy with "
                        "errors is not kept. \"restore\" puts a copy into the company's place.\nTo "
                        "use a copy beside the company, put it into a folder as %1 and register "
                        "the folder with \"zavdb add\".")
             .arg(engines::kEmbeddedFileName),
         2,
         2,
         {QCommandLineOption(kUnchecked, QStringLiteral("Keeps the copy without checking it."))},
         backUp},
        {QStringLiteral("restore"),
         QStringLiteral("NAME FILE"),
         QStringLiteral("Puts a backup in the place of the company's database"),
         QStringLiteral("The backup is copied and checked first. The database from before stays "
                        "beside it under a name with the time. Refused while a program has the "
                        "company open."),
         2,
         2,
         {},
         restore},
        {QStringLiteral("check"),
         QStringLiteral("NAME"),
         QStringLiteral("Reads every record and every key of every table and tells what is wrong"),
         QStringLiteral("Exit status 1 when something is."),
         1,
         1,
         {},
         checkCompany},
    };
}

}  // namespace tools
