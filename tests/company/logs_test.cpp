#include "company/logs.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>

#include "company/unfinished_note.h"
#include "data/clock.h"
#include "data/windows1252.h"
#include "tests/support/company_folder.h"

#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

using namespace company;
using test::str;

namespace {

class LogsTest : public ::testing::Test {
  protected:
    LogsTest() {
        setLogErrorReport([this](const QString& text) { m_errors.append(text); });
    }
    ~LogsTest() override { setLogErrorReport(nullptr); }

    test::CompanyFolder m_company;
    QStringList m_errors;
    QDateTime m_now{QDate(2024, 9, 5), QTime(14, 3, 27)};
    data::Clock::Override m_clock{[this] { return m_now; }};
};

TEST_F(LogsTest, ChangeLogLines) {
    WriteAlvMuutosLog(str("Aloitetaan muutos määrittelylle: Alv255"));
    m_now = m_now.addSecs(-10 * 3600);
    WriteAlvMuutosLog(str("Hinta: 1.5€ #0.0000€ "));
    WriteAlvMuutosLog(str("a\r\nb\n\nc\rd\n"));
    WriteAlvMuutosLog({});
    const QString host = computerName();
    ASSERT_FALSE(host.isEmpty());
    const QString expected =
        str("05.09.2024 14:03:27@%1  Aloitetaan muutos määrittelylle: Alv255\n"
            "05.09.2024 04:03:27@%1  Hinta: 1.5€ #0.0000€ \n"
            "05.09.2024 04:03:27@%1  a b c d \n"
            "05.09.2024 04:03:27@%1  \n");
    EXPECT_EQ(AlvMuutosLogName(), m_company.file(str("ALVMUUTOS.LOG")));
    EXPECT_EQ(test::fileBytes(AlvMuutosLogName()).replace("\r\n", "\n"),
              expected.arg(host).toUtf8());
    EXPECT_TRUE(m_errors.isEmpty());
}

TEST_F(LogsTest, GeneralLogIsWindows1252) {
    writeGeneralLog(str("Ääkköset € Ω\nkaksi"));
    const QString text = data::fromWindows1252(test::fileBytes(m_company.file(str("loki.dat"))));
    const QRegularExpression entry(str("^05\\.09\\.2024 14:03:27  [^@ ]+@") +
                                   QRegularExpression::escape(computerName()) +
                                   str("  Ääkköset € \\? kaksi\r\n$"));
    EXPECT_TRUE(entry.match(text).hasMatch()) << text.toStdString();
}

TEST_F(LogsTest, AFailureIsReportedOnceAndStopsNothing) {
    const QString blocked = m_company.file(str("ALVMUUTOS.LOG"));
    ASSERT_TRUE(QDir().mkpath(blocked));
    const qint64 lost = lostChangeLogLines().count;
    for (int i = 0; i < 3; ++i)
        WriteAlvMuutosLog(str("x"));
    ASSERT_EQ(m_errors.size(), 1);
    EXPECT_TRUE(m_errors.front().contains(blocked));
    ASSERT_TRUE(QDir().rmdir(blocked));
    WriteAlvMuutosLog(str("x"));
    EXPECT_EQ(lostChangeLogLines().count, lost + 3);
    EXPECT_EQ(lostChangeLogLines().problem, m_errors.front());
    ASSERT_TRUE(QFile::remove(blocked) && QDir().mkpath(blocked));
    WriteAlvMuutosLog(str("x"));
    EXPECT_EQ(m_errors.size(), 2);
}

#ifndef Q_OS_WIN
TEST_F(LogsTest, WhatCannotBeWrittenIsToldInFinnish) {
    const QString log = m_company.file(str("ALVMUUTOS.LOG"));
    const QByteArray pipe = QFile::encodeName(m_company.file(str("putki")));
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    const std::pair<const char*, const char*> cases[] = {
        {"/dev/full", "levy on täynnä"},
        {pipe.constData(), "se on putki eikä tiedosto"},  // would wait for a reader
        {"/puuttuva/loki", "tiedostoa tai sen kansiota ei ole"},
        {"/", "samanniminen kansio on tiellä"},
        {"/dev/null", nullptr}};  // a device is as good as a file
    for (const auto& [target, reason] : cases) {
        m_errors.clear();
        ASSERT_TRUE(QFile::link(QFile::decodeName(target), log));
        WriteAlvMuutosLog(str("x"));
        EXPECT_EQ(m_errors.join(u'|'),
                  reason ? str("Lokitiedostoon \"%1\" ei voi kirjoittaa: %2").arg(log, str(reason))
                         : QString());
        ASSERT_TRUE(QFile::remove(log));
    }
}

TEST_F(LogsTest, LinesOfTwoProgramsStayWhole) {
    constexpr int kLines = 3000;
    const QString tail(700, u'ä');
    test::inTwoProcesses(kLines, [&](const QString& who, int number) {
        WriteAlvMuutosLog(who + QString::number(number) + u' ' + tail);
    });
    QMap<QChar, int> next;
    const QRegularExpression line(
        str("^\\d\\d\\.\\d\\d\\.\\d{4} [\\d:]{8}@\\S+  ([AB])(\\d+) (ä+)$"));
    const QStringList lines =
        QString::fromUtf8(test::fileBytes(AlvMuutosLogName())).split(u'\n', Qt::SkipEmptyParts);
    for (const QString& text : lines) {
        const auto match = line.match(text);
        ASSERT_TRUE(match.hasMatch()) << text.left(80).toStdString();
        ASSERT_EQ(match.captured(2).toInt(), next[match.captured(1).front()]++);
        ASSERT_EQ(match.captured(3).size(), tail.size());
    }
    EXPECT_EQ(lines.size(), 2 * kLines);
}
#endif

TEST_F(LogsTest, UnfinishedNotesOfOlderVersions) {
    EXPECT_TRUE(readUnfinishedNotes().empty());
    acceptUnfinishedNote(str("x"));
    acceptUnfinishedNotes();

    test::writeFile(unfinishedNoteName(), QByteArray("[AJO\0", 5));
    const auto damaged = readUnfinishedNotes();
    ASSERT_EQ(damaged.size(), 1);
    EXPECT_FALSE(damaged[0].started.isValid());
    EXPECT_EQ(unfinishedNoteText(damaged[0]), str("Edellinen ajo jäi kesken"));
    EXPECT_EQ(m_errors.size(), 1);
    acceptUnfinishedNotes();
    EXPECT_FALSE(QFile::exists(unfinishedNoteName()));

    ASSERT_TRUE(QDir().mkpath(unfinishedNoteName() + str("/x")));  // nothing can remove it
    EXPECT_THROW(acceptUnfinishedNotes(), data::DataError);
}

}  // namespace
