#include "tools/zavdb/command.h"

#include <QCommandLineParser>
#include <QTextStream>
#include <algorithm>
#include <cstdio>

#include "company/aliases.h"
#include "company/connection_module.h"
#include "platform/csv.h"
#include "platform/dictionary_module.h"
#include "tools/zavdb/sequential_file.h"

namespace tools {

namespace {

constexpr int kError = 1;

QString overview(const std::vector<Command>& commands) {
    QString text = QStringLiteral(
        "Usage: zavdb COMMAND ...\n"
        "Creates, fills, reads and checks company databases.\n\nCommands:\n");
    qsizetype width = 0;
    for (const Command& command : commands)
        width = std::max(width, command.name.size());
    for (const Command& command : commands)
        text += QStringLiteral("  %1  %2\n").arg(command.name, -width).arg(command.summary);
    return text +
           QStringLiteral(
               "\n\"zavdb COMMAND --help\" explains a command, \"zavdb --version\" tells the "
               "version.\nExit status: 0 done, 1 error, 2 wrong usage.\n");
}

void print(const QString& text) {
    QTextStream(stdout) << text;
}

int wrongUsage(const QString& what, const QString& command = {}) {
    printError(what);
    printError(command.isEmpty()
                   ? QStringLiteral("\"zavdb --help\" lists the commands.")
                   : QStringLiteral("\"zavdb %1 --help\" explains the command.").arg(command));
    return kWrongUsage;
}

/// Parses the arguments of one command; its help becomes the answer.
Invocation parseArguments(const Command& command, const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        command.summary + u'.' + (command.details.isEmpty() ? QString() : u'\n' + command.details));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Shows this text."));
    parser.addOption(help);
    parser.addOptions(command.options);
    parser.addPositionalArgument(command.name, command.summary + u'.',
                                 command.name + u' ' + command.syntax);
    // the parser takes the first argument for the program's name
    QStringList given = arguments;
    given.prepend(QStringLiteral("zavdb"));
    if (!parser.parse(given))
        throw UsageError(parser.errorText(), command.name);
    Invocation result;
    if (parser.isSet(help)) {
        result.answer = parser.helpText();
        return result;
    }
    result.command = &command;
    Arguments& parsed = result.arguments;
    parsed.positional = parser.positionalArguments();
    if (parsed.count() < command.minArguments)
        throw UsageError(
            QStringLiteral("Too few arguments: zavdb %1 %2").arg(command.name, command.syntax),
            command.name);
    if (parsed.count() > command.maxArguments)
        throw UsageError(
            QStringLiteral("Too many arguments: \"%1\"").arg(parsed.at(command.maxArguments)),
            command.name);
    for (const QCommandLineOption& option : command.options) {
        const QString name = option.names().constFirst();
        if (!parser.isSet(option))
            continue;
        parsed.options[name] =
            option.valueName().isEmpty() ? QStringList{QString()} : parser.values(option);
    }
    return result;
}

}  // namespace

std::vector<Command> allCommands() {
    std::vector<Command> all = companyCommands();
    for (auto* more : {&tableCommands, &transferCommands, &copyCommands, &runCommands}) {
        std::vector<Command> part = more();
        std::move(part.begin(), part.end(), std::back_inserter(all));
    }
    return all;
}

Invocation parseCommandLine(const std::vector<Command>& commands, const QStringList& arguments) {
    if (arguments.isEmpty())
        throw UsageError(QStringLiteral("No command given."));
    const QString& first = arguments.constFirst();
    Invocation result;
    if (first == QLatin1String("--help") || first == QLatin1String("-h") ||
        first == QLatin1String("help")) {
        result.answer = overview(commands);
        return result;
    }
    if (first == QLatin1String("--version") || first == QLatin1String("-v")) {
        result.answer = QStringLiteral("zavdb %1\n").arg(QCoreApplication::applicationVersion());
        return result;
    }
    const auto command = std::find_if(commands.begin(), commands.end(),
                                      [&](const Command& c) { return c.name == first; });
    if (command == commands.end())
        throw UsageError(QStringLiteral("Unknown command \"%1\".").arg(first));
    return parseArguments(*command, arguments.mid(1));
}

int runZavdb(const QStringList& arguments) {
    const std::vector<Command> commands = allCommands();
    QString name;
    try {
        const Invocation asked = parseCommandLine(commands, arguments);
        if (asked.command == nullptr) {
            print(asked.answer);
            return 0;
        }
        name = asked.command->name;
        platform::loadDictionaryModule();
        return asked.command->run(asked.arguments);
    } catch (const UsageError& error) {
        return wrongUsage(error.message(), error.command().isEmpty() ? name : error.command());
    } catch (const CommandError& error) {
        printError(error.message());
    } catch (const data::DataError& error) {
        printError(error.english());
    } catch (const platform::CsvError& error) {
        printError(QString::fromUtf8(error.what()));
    } catch (const SequentialFileError& error) {
        printError(QString::fromUtf8(error.what()));
    } catch (const std::bad_alloc&) {
        printError(QStringLiteral("Out of memory."));
    }
    return kError;
}

QString companyFolder(const QString& name) {
    const std::optional<company::Alias> alias = company::findAlias(name);
    if (!alias)
        throw CommandError(QStringLiteral("There is no company \"%1\"; \"zavdb list\" shows the "
                                          "registered ones.")
                               .arg(name));
    return alias->physicalName;
}

std::unique_ptr<data::Database> openCompany(const QString& name) {
    companyFolder(name);
    return company::TZavDbConnectionModule::openByAlias(name);
}

std::unique_ptr<data::TableFile> openTable(data::Database& database, const QString& table) {
    try {
        return database.openTable(table);
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::NoSuchTable)
            throw;
        throw CommandError(
            QStringLiteral("Company \"%1\" has no table \"%2\".").arg(database.name(), table));
    }
}

void printLine(const QString& text) {
    QTextStream(stdout) << text << '\n';
}

void printError(const QString& text) {
    QTextStream(stderr) << "zavdb: " << text << '\n';
}

QString counted(qint64 count, const QString& thing) {
    return QStringLiteral("%1 %2%3").arg(count).arg(thing,
                                                    count == 1 ? QString() : QStringLiteral("s"));
}

}  // namespace tools
