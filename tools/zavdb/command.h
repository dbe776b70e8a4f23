#pragma once

#include <QCommandLineOption>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "data/engine/engine.h"

namespace tools {

/// Exit status of an invalid command line.
inline constexpr int kWrongUsage = 2;

/// A failed command: one English line for standard error, exit status 1.
class CommandError : public std::runtime_error {
  public:
    explicit CommandError(const QString& message)
        : std::runtime_error(message.toStdString()), m_message(message) {}
    const QString& message() const { return m_message; }

  private:
    QString m_message;
};

/// An invalid command line: exit status 2.
class UsageError : public CommandError {
  public:
    /// `command`: whose help to refer to; empty: the program's.
    explicit UsageError(const QString& message, QString command = {})
        : CommandError(message), m_command(std::move(command)) {}
    const QString& command() const { return m_command; }

  private:
    QString m_command;
};

/// A command's arguments in order and its options by name.
class Arguments {
  public:
    QStringList positional;
    QHash<QString, QStringList> options;  ///< without a value: one empty text

    const QString& at(int index) const { return positional.at(index); }
    int count() const { return static_cast<int>(positional.size()); }
    bool has(const QString& option) const { return options.contains(option); }
};

/// One command of the program.
struct Command {
    QString name;
    QString syntax;  ///< its arguments, for the help
    QString summary;
    QString details;  ///< further paragraphs of its own help
    int minArguments = 0;
    int maxArguments = 0;
    QList<QCommandLineOption> options;
    /// @return the exit status. @throws CommandError, data::DataError, platform::CsvError,
    /// SequentialFileError.
    std::function<int(const Arguments&)> run;
};

// The commands by subject; each list is one source file.
std::vector<Command> companyCommands();   ///< create, demo, list, add, forget, backup, check
std::vector<Command> tableCommands();     ///< tables, fields, dictionary, sql
std::vector<Command> transferCommands();  ///< import, export, load, save
std::vector<Command> copyCommands();      ///< copy
std::vector<Command> runCommands();       ///< runs, changes, undo, accept-run, verify, forget-run

/// A parsed command line: a command with its arguments, or only an answer.
struct Invocation {
    const Command* command = nullptr;
    Arguments arguments;
    QString answer;  ///< for standard output: help, the version
};

std::vector<Command> allCommands();
/// @throws UsageError.
Invocation parseCommandLine(const std::vector<Command>& commands, const QStringList& arguments);

/// Parses the command line and runs the command. @return the exit status: 0, 1 for an error
/// (reported on standard error), 2 for wrong usage.
int runZavdb(const QStringList& arguments);

// --- shared by several commands

/// The folder of a registered company. @throws CommandError if not registered.
QString companyFolder(const QString& name);
/// Opens a registered company's database. @throws CommandError, data::DataError.
std::unique_ptr<data::Database> openCompany(const QString& name);
/// Opens one table. @throws CommandError naming the table if the company has none of that name.
std::unique_ptr<data::TableFile> openTable(data::Database& database, const QString& table);

void printLine(const QString& text);   ///< to standard output
void printError(const QString& text);  ///< to standard error

/// "1 row", "12 rows"
QString counted(qint64 count, const QString& thing);

}  // namespace tools
