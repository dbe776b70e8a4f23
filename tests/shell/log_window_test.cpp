#include "shell/log/log_window.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <QRandomGenerator>
#include <QTest>

#include "company/logs.h"
#include "tests/support/company_folder.h"
#include "tests/support/scripted_dialogs.h"

using shell::LogModel;
using test::str;

namespace {

class LogWindow : public ::testing::Test {
  protected:
    template <class Control>
    Control* control(const char* name) {
        return m_window.findChild<Control*>(str(name));
    }
    void open() {
        m_window.show();
        m_window.reload();
        settle();
    }
    bool settle() {
        return QTest::qWaitFor([this] { return state().endsWith(u'.'); }, 20'000);
    }
    QString state() { return control<QLabel>("LokiTila")->text(); }
    QStringList shown() {
        const auto* model = static_cast<LogModel*>(control<QTableView>("LokiTaulu")->model());
        QStringList lines;
        for (int row = 0; row < model->rowCount(); ++row)
            lines += model->line(row);
        return lines;
    }
    void append(const QString& text) {
        QFile file(company::AlvMuutosLogName());
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(text.toUtf8());
    }

    test::ScriptedDialogs m_dialogs;
    test::RecordedDesktop m_desktop;
    test::CompanyFolder m_company;
    shell::LogWindow m_window;
};

// Lines of every length up to more than a block, so that block ends fall everywhere.
TEST_F(LogWindow, ShowsEveryLineOfALargeLogOnce) {
    QRandomGenerator random(20);
    QStringList lines;
    for (qint64 size = 0; size < 3 * shell::LogFile::kBlock; size += lines.last().size()) {
        const int length = random.bounded(400) == 0 ? 30'000 : random.bounded(1, 300);
        lines += str("01.09.2024 06:30:00@KASSA1  ") + QString::number(lines.size()) +
                 QString(length, u'ä');
    }
    lines.insert(lines.size() / 2, QString(static_cast<qsizetype>(900'000), u'x'));
    append(lines.join(u'\n') + u'\n');
    open();
    EXPECT_TRUE(shown() == lines);
    const auto* table = control<shell::LogTable>("LokiTaulu");
    EXPECT_TRUE(table->isAtEnd());
}

TEST_F(LogWindow, FindsErrorsFollowsTheRunAndExportsWhatItShows) {
    open();
    EXPECT_TRUE(state().contains(str("Lokia ei vielä ole")));
    EXPECT_FALSE(QFile::exists(company::AlvMuutosLogName()));
    const QString head = str("01.09.2024 06:30:00@KASSA1  ");
    const QStringList lines = {head + str("Aloitetaan muutos määrittelylle: Alv255"),
                               head + str("Huomaa: ryhmää 7 ei ole"),
                               head + str("Virhe tuotteen päivityksessä: 4711"),
                               head + str("Tuote: Virhe-elokuva")};
    append(lines.join(u'\n') + u'\n');
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == lines; }));
    append(head + str("Määritt"));  // a line that is being written
    control<QComboBox>("LokiRajaus")->setCurrentIndex(1);
    settle();
    EXPECT_EQ(shown(), lines.mid(1, 2));
    control<QComboBox>("LokiRajaus")->setCurrentIndex(0);
    QTest::keyClicks(control<QLineEdit>("LokiHaku"), str("VIRHE"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == lines.mid(2); }));

    const QString target = m_company.file(str("vienti.txt"));
    m_dialogs.expectFileChoice(target);
    QTest::mouseClick(control<QPushButton>("LokiVie"), Qt::LeftButton);
    EXPECT_EQ(QString::fromUtf8(test::fileBytes(target)), lines.mid(2).join(u'\n') + u'\n');

    QTest::mouseClick(control<QPushButton>("LokiTyopoyta"), Qt::LeftButton);
    EXPECT_EQ(m_desktop.opened, QList<QUrl>({QUrl::fromLocalFile(company::AlvMuutosLogName())}));
    company::writeGeneralLog(str("Äyskäri"));
    control<QLineEdit>("LokiHaku")->clear();
    control<QComboBox>("LokiValinta")->setCurrentIndex(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown().size() == 1; }));
    EXPECT_EQ(shell::logParts(shown().value(0)).message, str("Äyskäri"));
}

}  // namespace
