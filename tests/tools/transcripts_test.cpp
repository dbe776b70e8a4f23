// Runs the command lines of transcripts.txt and compares what zavdb answers. A line of it is one
// of:
//   == NAME            begins a test in its own folder, with a company A that has the tables RAAKA
//                      and MUISTIO too
//   > FILE TEXT        writes a file; \n, \r, \xNN as in C++
//   $ ARGUMENTS        has to succeed without a word on standard error and to write the lines
//   below:
//                      exactly these lines, "(nothing)", or every "~ TEXT" somewhere; none:
//                      anything
//   ! ARGUMENTS        has to end with 1, no output and an error that holds every text after a "|"
//   ? ARGUMENTS        wrong usage: has to end with 2 and an error
//   = ARGUMENTS        output that no refused command below may change
//   absent FILE
//   present FILE [TEXT] and it holds exactly this
// Commands may end with "<< TEXT", which is written to the file "@" first.

#include <QRegularExpression>

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
                                 "table MUISTIO\n"
                                 "field 1 Nro integer:29 4 0 4 AUTOINCREMENT\n"
                                 "field 2 Teksti memo:22 19 4 20 NOTE\n"
                                 "key 0 unique : Nro\n"})
            tables.push_back(data::parseTableSource(text, QStringLiteral("test.dict")));
        engines::createEmbedded(path("a"), tables);
        done({"add", "A", "a"});
    }
    test::ProgramResult runLine(QString line) {
        const qsizetype input = line.indexOf(QStringLiteral(" << "));
        if (input >= 0)
            file("@", unescaped(line.mid(input + 4)));
        line.truncate(input >= 0 ? input : line.size());
        return run(QProcess::splitCommand(line).replaceInStrings("{empty}", ""));
    }
};

TEST_P(Transcript, AnswersAsWritten) {
    const Lines& lines = transcripts().at(GetParam());
    QString watched;
    QByteArray unchanged;
    for (size_t i = 0; i < lines.size();) {
        SCOPED_TRACE(lines[i]);
        const QString line = QString::fromStdString(lines[i++]);
        const QString rest = line.section(u' ', 1);
        if (line.startsWith(u"> ")) {
            const QString name = rest.section(u' ', 0, 0);
            QDir().mkpath(QFileInfo(path(name)).path());
            file(qPrintable(name), unescaped(rest.section(u' ', 1)));
        } else if (line.startsWith(u"absent ") || line.startsWith(u"present ")) {
            const QString name = rest.section(u' ', 0, 0);
            EXPECT_EQ(QFile::exists(path(name)), line.startsWith(u'p'));
            EXPECT_TRUE(name == rest ||
                        test::fileBytes(path(name)) == unescaped(rest.section(u' ', 1)));
        } else if (line.startsWith(u"! ")) {
            const QStringList parts = rest.section(" << ", 0, 0).split(QStringLiteral(" | "));
            const test::ProgramResult result =
                runLine(parts[0] + rest.mid(parts.join(" | ").size()));
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.out, QByteArray());
            for (const QString& word : parts.mid(1))
                EXPECT_TRUE(result.err.contains(word.toUtf8())) << result.err.constData();
            EXPECT_EQ(watched.isEmpty() ? unchanged : runLine(watched).out, unchanged);
        } else {
            const test::ProgramResult result = runLine(rest);
            const bool isUsage = line.startsWith(u'?');
            EXPECT_EQ(result.status, isUsage ? 2 : 0);
            EXPECT_EQ(result.err.isEmpty(), !isUsage) << result.err.constData();
            if (line.startsWith(u"= ")) {
                watched = rest;
                unchanged = result.out;
                continue;
            }
            static const QRegularExpression kDirective("^(present|absent|[>$!?=]) ");
            const bool isSearched = i < lines.size() && lines[i].starts_with("~ ");
            QString wanted;
            for (; i < lines.size() && !QString::fromStdString(lines[i]).contains(kDirective);
                 ++i) {
                if (isSearched) {
                    EXPECT_TRUE(result.out.simplified().contains(lines[i].substr(2).c_str()))
                        << result.out.constData();
                } else {
                    wanted += QString::fromStdString(lines[i]) + u'\n';
                }
            }
            wanted.replace(QStringLiteral("{folder}"), QDir::toNativeSeparators(path("") + u'/'));
            const bool isCompared = !wanted.isEmpty();
            wanted.remove(QStringLiteral("(nothing)\n"));
            if (isCompared) {
                EXPECT_EQ(QString::fromUtf8(result.out).remove(u'\r').toStdString(),
                          wanted.toStdString());
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Zavdb, Transcript, ::testing::ValuesIn(names()),
                         [](const auto& test) { return test.param; });

}  // namespace
