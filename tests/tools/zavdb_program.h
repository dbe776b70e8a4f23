#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace test {

struct ProgramResult {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

/// Runs the built zavdb with settings and a working folder of its own.
class ZavdbProgram : public ::testing::Test {
  protected:
    static QString program() {
        QString folder = qEnvironmentVariable("TAKSAVAIHE_BIN");
        if (folder.isEmpty())
            folder = QCoreApplication::applicationDirPath();
        return folder + QStringLiteral("/zavdb");
    }

    /// `redirection`: as the shell has it behind a command, ">&-".
    ProgramResult run(const QStringList& arguments, const QStringList& environment = {},
                      const QString& redirection = {}) {
        QProcess process;
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config"));
        for (const QString& setting : environment)
            variables.insert(setting.section(u'=', 0, 0), setting.section(u'=', 1));
        process.setProcessEnvironment(variables);
        process.setWorkingDirectory(m_folder.path());
        if (redirection.isEmpty())
            process.start(program(), arguments);
        else
            process.start(QStringLiteral("/bin/sh"),
                          QStringList{"-c", "\"$0\" \"$@\" " + redirection, program()} + arguments);
        ProgramResult result;
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit) {
            ADD_FAILURE() << "zavdb " << arguments.join(u' ').toStdString() << ": "
                          << process.errorString().toStdString();
            return result;
        }
        result.status = process.exitCode();
        result.out = process.readAllStandardOutput();
        result.err = process.readAllStandardError();
        return result;
    }

    /// Runs a command that has to succeed without a word on standard error. @return its output.
    QByteArray done(const QStringList& arguments, const QStringList& environment = {}) {
        const ProgramResult result = run(arguments, environment);
        EXPECT_EQ(result.status, 0) << arguments.join(u' ').toStdString() << "\n"
                                    << result.err.toStdString();
        EXPECT_EQ(result.err, QByteArray()) << arguments.join(u' ').toStdString();
        return result.out;
    }

    /// Runs a command that has to fail with status 1 and an error that holds every one of `words`.
    void refused(const QStringList& arguments, const QStringList& words) {
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 1) << arguments.join(u' ').toStdString();
        EXPECT_EQ(result.out, QByteArray()) << arguments.join(u' ').toStdString();
        const QString error = QString::fromUtf8(result.err);
        for (const QString& word : words)
            EXPECT_TRUE(error.contains(word))
                << '"' << word.toStdString() << "\" is missing in: " << error.toStdString();
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString path(const char* name) const { return path(QString::fromLatin1(name)); }

    QString file(const char* name, const QByteArray& bytes) {
        QFile written(path(name));
        EXPECT_TRUE(written.open(QIODevice::WriteOnly));
        EXPECT_EQ(written.write(bytes), bytes.size());
        return written.fileName();
    }

  private:
    QTemporaryDir m_folder;
};

}  // namespace test
