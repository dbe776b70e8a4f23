#include <gtest/gtest.h>

#include <QApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>
#include <QXmlStreamReader>

#include "company/batch_list.h"
#include "platform/schedule/task_scheduler.h"
#include "shell/main_form.h"
#include "shell/schedule/schedule_dialog.h"
#include "shell/schedule/scheduled_start.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"

using test::str;

namespace {

// 1.9.2024 0.15 in Finland
const QDateTime kNight(QDate(2024, 8, 31), QTime(21, 15), Qt::UTC);

platform::ScheduledTask trickyTask() {
    return {str("eraajo-1"),
            str("Taksavaihe: eräajo,\n50 % & Co <Oy>"),
            str("/opt/oma $kansio/100%/taksavaihe"),
            {str("Mäki \"50%\" $HOME\\ Oy\\"), str("/E")},
            kNight};
}

TEST(ScheduledTask, SystemdReadsTheUnitsAsMeant) {
    const platform::SystemdUnits units =
        platform::systemdUnits(trickyTask(), {{str("XDG_CONFIG_HOME"), str("/koti/a b%")}});
    EXPECT_TRUE(
        units.service.contains(str("\nEnvironment=\"XDG_CONFIG_HOME=/koti/a b%%\"\n"
                                   "ExecStart=\"/opt/oma $kansio/100%%/taksavaihe\" "
                                   "\"Mäki \\\"50%%\\\" $$HOME\\\\ Oy\\\\\" \"/E\"\n")))
        << units.service.toStdString();
    EXPECT_TRUE(units.timer.contains(str("\nOnCalendar=2024-08-31 21:15:00 UTC\n")));
    EXPECT_TRUE(units.timer.contains(str("Description=Taksavaihe: eräajo, 50 %% & Co <Oy>\n")));

    const QString analyze = QStandardPaths::findExecutable(str("systemd-analyze"));
    if (analyze.isEmpty())
        GTEST_SKIP() << "no systemd-analyze";
    const QTemporaryDir folder;
    platform::ScheduledTask task = trickyTask();
    task.program = QCoreApplication::applicationFilePath();
    const platform::SystemdUnits real = platform::systemdUnits(task, {});
    test::writeFile(folder.filePath(str("t.service")), real.service.toUtf8());
    test::writeFile(folder.filePath(str("t.timer")), real.timer.toUtf8());
    QProcess verify;
    verify.setProcessChannelMode(QProcess::MergedChannels);
    verify.start(analyze, {str("verify"), str("--man=no"), folder.filePath(str("t.timer")),
                           folder.filePath(str("t.service"))});
    ASSERT_TRUE(verify.waitForFinished());
    const QString said = QString::fromUtf8(verify.readAll());
    EXPECT_FALSE(said.contains(folder.path())) << said.toStdString();
}

TEST(ScheduledTask, WindowsGetsItsXmlAndQuotes) {
    const std::pair<const char*, const char*> quotes[] = {
        {"Oy", "\"Oy\""},     {"", "\"\""},           {"a\\b", "\"a\\b\""},
        {"a\\", "\"a\\\\\""}, {"a\"b", "\"a\\\"b\""}, {"a\\\"b", "\"a\\\\\\\"b\""}};
    for (const auto& [plain, quoted] : quotes)
        EXPECT_EQ(platform::windowsQuoted(str(plain)), str(quoted));

    QXmlStreamReader xml(platform::windowsTaskXml(trickyTask(), str("KONE\\Äiti"), false));
    QStringList values;
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::Characters && !xml.isWhitespace())
            values += xml.text().toString();
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    for (const char* value :
         {"2024-08-31T21:15:00Z", "S4U", "PT0S", "Taksavaihe: eräajo, 50 % & Co <Oy>", "KONE\\Äiti",
          "\"Mäki \\\"50%\\\" $HOME\\ Oy\\\\\" \"/E\""})
        EXPECT_TRUE(values.contains(str(value))) << value;
}

class RecordedScheduler : public platform::TaskScheduler {
  public:
    RecordedScheduler() : m_previous(setInstance(this)) {}
    ~RecordedScheduler() override { setInstance(m_previous); }
    QString problem() override { return problemText; }
    void store(const platform::ScheduledTask& task, const QString&) override {
        if (fails)
            throw data::DataError(data::ErrorKind::Io, str("ajastin"), {});
        tasks = {task};
    }
    bool remove(const QString& id) override {
        return std::erase_if(tasks, [&](const auto& task) { return task.id == id; }) > 0;
    }
    bool exists(const QString& id) override { return !tasks.empty() && tasks[0].id == id; }

    QString problemText;
    bool fails = false;
    std::vector<platform::ScheduledTask> tasks;

  private:
    TaskScheduler* m_previous;
};

class Schedule : public ::testing::Test {
  protected:
    Schedule() {
        m_shop.setNow(QDateTime(QDate(2024, 8, 31), QTime(16, 0)));
        company::writeBatchList(company::AlvMuutosIniName(), {str("Alv255"), {}, {}, {}});
        m_form.alusta();
        m_form.showCompany();
        m_form.show();
    }
    ~Schedule() override {
        QFile::remove(company::AlvMuutosIniName());
        shell::removeSchedule(m_name);
    }
    void click(const char* name) {
        QTest::mouseClick(m_form.findChild<QPushButton*>(str(name)), Qt::LeftButton);
    }
    // Opens the dialog by a button of the main window and presses one of its own.
    void inDialog(const char* opener, const char* button) {
        QTimer::singleShot(0, &m_form, [button] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            QTest::mouseClick(dialog->findChild<QPushButton*>(str(button)), Qt::LeftButton);
            dialog->close();
        });
        click(opener);
    }
    QString line() {
        const auto* row = m_form.findChild<QWidget*>(str("AjastusRivi"));
        return row->isVisible() ? row->findChild<QLabel*>()->text() : QString();
    }
    QString lineAt(const QDateTime& now) {
        m_shop.setNow(now);
        m_form.showCompany();
        return line();
    }
    // The program's start by the scheduler. @return the refusal
    QString startAt(const QDateTime& now, const QStringList& parameters, int status) {
        m_shop.setNow(now);
        platform::setParameters(parameters);
        shell::ScheduledStart start(m_name);
        QString refusal = start.refusal();
        start.ended(status);
        platform::setParameters({});
        return refusal;
    }

    test::ScriptedDialogs m_dialogs;
    RecordedScheduler m_scheduler;
    test::ShopCompany m_shop;
    shell::TMainForm m_form;
    const QString m_name = company::currentCompany().name;
};

TEST_F(Schedule, IsMadeShownRunAndForgotten) {
    inDialog("Ajasta", "AjastaButton");
    ASSERT_EQ(m_scheduler.tasks.size(), 1U);
    const platform::ScheduledTask task = m_scheduler.tasks[0];
    const QDateTime night(QDate(2024, 9, 1), QTime(0, 15));
    EXPECT_EQ(task.moment, night);
    EXPECT_EQ(task.arguments.mid(0, 2), QStringList({m_name, str("/E")}));
    EXPECT_EQ(shell::scheduledMoment(task.arguments.value(2)), night);
    const QString when = str("su 1.9.2024 klo 0.15");
    EXPECT_EQ(line(), str("Ajastettu: eräajo ") + when);

    EXPECT_EQ(startAt(night.addSecs(20), task.arguments, 0), QString());
    EXPECT_TRUE(m_scheduler.tasks.empty());
    EXPECT_EQ(lineAt(night.addSecs(7 * 3600)),
              str("Ajastettu eräajo ") + when + str(" päättyi klo 0.15: kaikki onnistui."));
    // the same command a second time, by hand in the scheduler's own tool
    m_dialogs.expectQuestion(str("Poistetaanko ajastus?"), true);
    click("AjastusPoista");
    EXPECT_EQ(line(), QString());
    EXPECT_TRUE(startAt(night.addSecs(60), task.arguments, 1).contains(str("on poistettu")));
}

TEST_F(Schedule, AMissedMomentIsToldAndNotMadeUp) {
    inDialog("Ajasta", "AjastaButton");
    const QStringList parameters = m_scheduler.tasks.at(0).arguments;
    const QDateTime night(QDate(2024, 9, 1), QTime(0, 15));
    const QString missed = str("Ajastettu eräajo su 1.9.2024 klo 0.15 jäi väliin: ");
    EXPECT_EQ(lineAt(night.addSecs(3601)), missed + str("kone ei ollut silloin käynnissä."));
    EXPECT_TRUE(startAt(night.addSecs(3601), parameters, 1).contains(str("yli tunnin myöhässä")));
    EXPECT_EQ(lineAt(night.addSecs(8 * 3600)),
              missed + str("kone tai ohjelma käynnistyi vasta su 1.9.2024 klo 1.15."));
    EXPECT_TRUE(m_scheduler.tasks.empty());
}

TEST_F(Schedule, WhatCannotBeScheduledSaysWhy) {
    m_scheduler.problemText = str("Ei ajastinta.");
    m_dialogs.expectMessage(m_scheduler.problemText);
    click("Ajasta");
    m_scheduler.problemText.clear();
    m_scheduler.fails = true;
    m_dialogs.expectAnyMessage();
    inDialog("Ajasta", "AjastaButton");
    EXPECT_EQ(line(), QString());
    m_scheduler.fails = false;
    m_form.findChild<QComboBox*>(str("Maar2"))->setEditText(str("Toinen"));
    m_dialogs.expectMessage(
        str("Eräajon luettelossa on muutoksia, joita ei ole talletettu. "
            "Paina ensin \"Talleta\"."));
    click("Ajasta");
    EXPECT_TRUE(m_scheduler.tasks.empty());
}

}  // namespace
