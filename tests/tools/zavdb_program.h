#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include "tests/support/company_folder.h"

namespace test {

struct ProgramResult {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

/// Runs the built zavdb with its own settings and working folder.
class ZavdbProgram : public ::testing::Test {
  protected:
    static QString program() {
        const QString folder = qEnvironmentVariable("TAKSAVAIHE_BIN");
        return (folder.isEmpty() ? QCoreApplication::applicationDirPath() : folder) + "/zavdb";
    }

    /// Sets the environment and working folder of a process.
    void prepare(QProcess& process, const QStringList& environment = {}) const {
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config"));
        for (const QString& setting : environment)
            variables.insert(setting.section(u'=', 0, 0), setting.section(u'=', 1));
        process.setProcessEnvironment(variables);
        process.setWorkingDirectory(m_folder.path());
    }

    /// `redirection`: in the shell's syntax, ">&-".
    ProgramResult run(const QStringList& arguments, const QStringList& environment = {},
                      const QString& redirection = {}) {
        QProcess process;
        prepare(process, environment);
        if (redirection.isEmpty())
            process.start(program(), arguments);
        else
            process.start(QStringLiteral("/bin/sh"),
                          QStringList{"-c", "\"$0\" \"$@\" " + redirection, program()} + arguments);
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit) {
            ADD_FAILURE() << arguments.join(u' ').toStdString() << ": "
                          << process.errorString().toStdString();
            return {};
        }
        return {process.exitCode(), process.readAllStandardOutput(),
                process.readAllStandardError()};
    }

    /// Runs a command that must succeed with empty standard error. @return its output.
    QByteArray done(const QStringList& arguments, const QStringList& environment = {}) {
        const ProgramResult result = run(arguments, environment);
        EXPECT_EQ(result.status, 0) << arguments.join(u' ').toStdString();
        EXPECT_EQ(result.err, QByteArray()) << arguments.join(u' ').toStdString();
        return result.out;
    }

    QStringList tableNames(const QString& company) {
        QStringList names;
        for (const QByteArray& line : done({"tables", company}).trimmed().split('\n'))
            names.append(QString::fromUtf8(line.left(line.indexOf(' '))));
        return names;
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString path(const char* name) const { return path(QString::fromUtf8(name)); }
    QString file(const char* name, const QByteArray& bytes) {
        writeFile(path(name), bytes);
        return path(name);
    }

  private:
    QTemporaryDir m_folder;
};

}  // namespace test
