#include "shell/batch.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <map>

#include "data/error.h"
#include "shell/build_stamp.h"
#include "shell/start_up.h"

using shell::ExitStatus;
using vatchange::RunResult;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

// Saved are "a", "b" and "c"; each run of a definition ends as `results` says.
struct Recorder {
    bool marked = false;
    QStringList problems;
    QString damaged;
    std::map<QString, RunResult> results;
    QStringList events;
    QString loaded;

    ExitStatus run(const company::BatchList& list) {
        shell::BatchPorts ports;
        ports.alreadyRun = [this] { return marked; };
        ports.isSaved = [](const QString& name) {
            return str("abc").contains(name, Qt::CaseInsensitive);
        };
        ports.problems = [this] { return problems; };
        ports.openForm = [this] { events.append(str("open")); };
        ports.load = [this](const QString& name) {
            if (name == damaged)
                throw data::DataError::verbatim(data::ErrorKind::Damaged, str("rivi 3"));
            loaded = name;
            return true;
        };
        ports.run = [this] {
            events.append(str("run ") + loaded);
            return results[loaded];
        };
        ports.generalLog = [this](const QString& line) { events.append(str("loki: ") + line); };
        ports.changeLog = [this](const QString& line) { events.append(str("log: ") + line); };
        return runBatch(list, ports);
    }
};

TEST(Batch, RunsTheListInItsOrderAndLogsNamesAsWritten) {
    Recorder r;
    EXPECT_EQ(r.run({str("C"), str(""), str("a"), str("")}), ExitStatus::Done);
    EXPECT_EQ(r.events, QStringList({str("open"), str("log: Aloitetaan muutos määrittelylle: C"),
                                     str("run C"), str("log: Aloitetaan muutos määrittelylle: a"),
                                     str("run a")}));
}

TEST(Batch, AnEmptyListOpensTheFormAndLogsNothing) {
    Recorder r;
    EXPECT_EQ(r.run({}), ExitStatus::Done);
    EXPECT_EQ(r.events, QStringList(str("open")));
}

TEST(Batch, TheMarkComesBeforeUnknownNamesAndTheseBeforeProblemsOfTheStart) {
    Recorder r;
    r.marked = true;
    r.problems = QStringList({str("luokat"), str("luettelo")});
    EXPECT_EQ(r.run({str("x"), str("a")}), ExitStatus::AlreadyRun);
    EXPECT_EQ(r.events, QStringList(str("loki: Taksavaihe on kertaalleen ajettu")));

    r.marked = false;
    r.events.clear();
    EXPECT_EQ(r.run({str("a"), str("b"), str("x"), str("y")}), ExitStatus::Unavailable);
    EXPECT_EQ(r.events, QStringList({str("log: Määrittelyä ei löydy, eräajoa ei tehdä: x"),
                                     str("log: Määrittelyä ei löydy, eräajoa ei tehdä: y")}));

    r.events.clear();
    EXPECT_EQ(r.run({str("a"), str(""), str(""), str("")}), ExitStatus::Failed);
    EXPECT_EQ(r.events, QStringList({str("log: luokat"), str("log: luettelo")}));
}

TEST(Batch, ADamagedDefinitionIsRefusedAndTheOthersRun) {
    Recorder r;
    r.damaged = str("b");
    EXPECT_EQ(r.run({str("a"), str("b"), str("c"), str("")}), ExitStatus::Failed);
    EXPECT_EQ(r.events.mid(3),
              QStringList({str("log: Määrittelyä ei ajeta: \"b\": rivi 3"),
                           str("log: Aloitetaan muutos määrittelylle: c"), str("run c")}));
}

TEST(Batch, WhateverGoesWrongInADefinitionTheNextOnesRunAndTheStatusTells) {
    RunResult bad[3];
    bad[0].refused = true;
    bad[1].failedSteps = 1;
    bad[2].skippedProducts = 1;
    for (const RunResult& result : bad) {
        Recorder r;
        r.results[str("a")] = result;
        EXPECT_EQ(r.run({str("a"), str("b"), str(""), str("c")}), ExitStatus::Failed);
        EXPECT_EQ(r.events.filter(str("run")),
                  QStringList({str("run a"), str("run b"), str("run c")}));
    }
    Recorder stopped;
    stopped.results[str("b")].cancelled = true;
    EXPECT_EQ(stopped.run({str("a"), str("b"), str("c"), str("")}), ExitStatus::Failed);
    EXPECT_EQ(stopped.events.last(), str("run b"));
}

TEST(BuildStamp, ShowsLocalTimeOrDateTimeZero) {
    const QDateTime built(QDate(2024, 9, 5), QTime(14, 3, 7));
    EXPECT_EQ(shell::buildStampText(built.toSecsSinceEpoch()), str("05.09.2024 14:03:07"));
    EXPECT_EQ(shell::buildStampText(std::nullopt), str("30.12.1899 00:00:00"));
}

}  // namespace
