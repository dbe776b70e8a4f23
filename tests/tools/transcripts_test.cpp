// Runs the command lines of transcripts.txt and compares what zavdb answers. A line of it is one
// of:
//   == NAME            begins a test in its own folder, with a company A that has the tables
//                      RAAKA, MUISTIO and KURSSI too
//   > FILE TEXT        writes a file; \n, \r, \xNN as in C++
//   $ ARGUMENTS        has to succeed without a word on standard error; "=> LINE / LINE": and to
//                      write exactly this, "~ TEXT ~ TEXT": to write these somewhere
//   ! ARGUMENTS        has to end with 1, no output and an error that holds every text after a "|"
//   ? ARGUMENTS        wrong usage: has to end with 2 and an error
//   1 ARGUMENTS        has to end with 1, an error and, after "=>", exactly this output
//   run SQL; SQL       statements that company A's journal gets as a run of definition "Koe";
//                      "run open SQL": the run is left unfinished
//   = ARGUMENTS        output that no refused command below may change
//   absent FILE
//   present FILE [TEXT] and it holds exactly this
// {empty}, {newline} and {tab} stand for what a line cannot hold. Commands may end with "<< TEXT",
// which is written to the file "@" first.

#include <QRegularExpression>

#include "data/clock.h"
#include "data/engine/run_journal.h"
#include "engines/embedded/embedded_database.h"
#include "tests/tools/zavdb_program.h"

namespace {

using Lines = std::vector<std::string>;

const std::map<std::string, Lines>& transcripts() {
    static const std::map<std::string, Lines> kAll = [] {
        std::map<std::string, Lines> all;
        QFile file(QStringLiteral(TAKSAVAIHE_TRANSCRIPTS));
        Lines* current = nullptr;
        if (!file.open(QIODevice::ReadOnly))
            throw std::runtime_error("transcripts.txt cannot be read");
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith("== "))
                current = &all[line.mid(3).toStdString()];
            else if (current != nullptr && !line.isEmpty() && !line.startsWith("//"))
                current->push_back(line.toStdString());
        }
        return all;
    }();
    return kAll;
}

Lines names() {
    Lines result;
    for (const auto& [name, lines] : transcripts())
        result.push_back(name);
    return result;
}

QByteArray unescaped(const QString& text) {
    QByteArray bytes = text.toUtf8();
    bytes.replace("\\n", "\n").replace("\\r", "\r");
    for (qsizetype at = 0; (at = bytes.indexOf("\\x", at)) >= 0; ++at)
        bytes.replace(at, 4, QByteArray::fromHex(bytes.mid(at + 2, 2)));
    return bytes;
}

class Transcript : public test::ZavdbProgram, public ::testing::WithParamInterface<std::string> {
  protected:
    void SetUp() override {
        std::vector<data::TableSource> tables = data::allTableSources();
        for (const char* text : {"table RAAKA\n"
                                 "field 1 Nro integer 4 0 4 INTEGER\n"
                                 "field 2 Loput string 4 4 4 STRING\n"
                                 "key 0 unique : Nro\n",
                                 "table KURSSI\n"
                                 "field 1 Nro integer 4 0 4 INTEGER\n"
                                 "field 2 Hinta float 8 4 8 FLOAT\n"
                                 "key 0 unique : Nro\n",
                                 "table MUISTIO\n"
                                 "field 1 Nro integer:29 4 0 4 AUTOINCREMENT\n"
                                 "field 2 Teksti memo:22 19 4 20 NOTE\n"
                                 "key 0 unique : Nro\n"})
            tables.push_back(data::parseTableSource(text, QStringLiteral("test.dict")));
        engines::createEmbedded(path("a"), tables);
        done({"add", "A", "a"});
    }
    /// Makes a run of company A.
    void record(const QString& statements) {
        const bool open = statements.startsWith(u"open ");
        const auto database = engines::openEmbedded("A", path("a"));
        data::JournalRun head;
        head.definition = "Koe";
        head.started = QDateTime(QDate(2024, 9, 1), QTime(6, 30));
        head.user = "tuija";
        head.computer = "TOIMISTO";
        database->journal()->begin(head, {});
        for (const QString& sql : statements.mid(open ? 5 : 0).split(u';'))
            database->prepare(sql)->execute();
        if (open)
            return;
        const data::Clock::Override clock(
            [] { return QDateTime(QDate(2024, 9, 1), QTime(6, 45)); });
        database->journal()->end(data::RunState::Done);
    }
    test::ProgramResult runLine(const QString& line) {
        return run(QProcess::splitCommand(line)
                       .replaceInStrings("{empty}", "")
                       .replaceInStrings("{newline}", "\n")
                       .replaceInStrings("{tab}", "\t"));
    }
};

TEST_P(Transcript, AnswersAsWritten) {
    QString watched;
    QByteArray unchanged;
    for (const std::string& text : transcripts().at(GetParam())) {
        SCOPED_TRACE(text);
        const QString line = QString::fromStdString(text);
        const QString sign = line.section(u' ', 0, 0);
        const QString name = line.section(u' ', 1, 1);
        const QString rest = line.section(u' ', 2);
        if (sign == u">") {
            QDir().mkpath(QFileInfo(path(name)).path());
            file(qPrintable(name), unescaped(rest));
            continue;
        }
        if (sign == u"run") {
            record(line.mid(4));
            continue;
        }
        if (sign == u"absent" || sign == u"present") {
            EXPECT_EQ(QFile::exists(path(name)), sign == u"present");
            EXPECT_TRUE(rest.isEmpty() || test::fileBytes(path(name)) == unescaped(rest));
            continue;
        }
        QString command = line.mid(2);
        const qsizetype input = command.indexOf(QStringLiteral(" << "));
        if (input >= 0) {
            file("@", unescaped(command.mid(input + 4)));
            command.truncate(input);
        }
        const qsizetype exact = command.indexOf(QStringLiteral(" => "));
        QString wanted = exact < 0 ? QString() : command.mid(exact + 4);
        wanted.replace(QStringLiteral("{folder}"), QDir::toNativeSeparators(path("") + u'/'));
        const QStringList parts =
            command.left(exact).split(QRegularExpression(QStringLiteral(" [|~] ")));
        const test::ProgramResult result = runLine(parts[0]);
        EXPECT_EQ(result.status, sign == u"?" ? 2 : sign == u"!" || sign == u"1" ? 1 : 0);
        EXPECT_NE(result.err.isEmpty(), sign == u"?" || sign == u"!" || sign == u"1")
            << result.err.constData();
        if (sign == u"!") {
            EXPECT_EQ(result.out, QByteArray());
        }
        for (const QString& part : parts.mid(1))
            EXPECT_TRUE((result.err + result.out.simplified()).contains(part.toUtf8()))
                << result.err.constData() << result.out.constData();
        const QString output = QString::fromUtf8(result.out).remove(u'\r').replace(u'\n', " / ");
        if (exact >= 0) {
            EXPECT_EQ(output.toStdString(),
                      (wanted + (wanted.isEmpty() ? "" : " / ")).toStdString());
        }
        if (sign == u"=") {
            watched = parts[0];
            unchanged = result.out;
        } else if (sign == u"!" && !watched.isEmpty()) {
            EXPECT_EQ(runLine(watched).out, unchanged);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Zavdb, Transcript, ::testing::ValuesIn(names()),
                         [](const auto& test) { return test.param; });

}  // namespace
