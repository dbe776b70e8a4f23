#include "shell/batch.h"

#include <gtest/gtest.h>

#include <map>

#include "shell/build_stamp.h"
#include "shell/start_up.h"
#include "tests/support/checks.h"

using shell::ExitStatus;
using test::str;
using vatchange::RunResult;

namespace {

// "a", "b" and "c" are saved; "b" can be damaged; runs end as `results` says.
struct Recorder {
    bool marked = false;
    QStringList problems;
    bool bIsDamaged = false;
    std::map<QString, RunResult> results;
    QStringList events;
    QString loaded;
    bool listIsUnreadable = false;

    ExitStatus run(const char* list) {
        const QStringList names = str(list).split(u' ');  // "-" is an empty name
        company::BatchList batch;
        for (int i = 0; i < names.size(); ++i)
            batch[i] = names[i] == u'-' ? QString() : names[i];
        shell::BatchPorts ports;
        ports.alreadyRun = [this] { return marked; };
        ports.isSaved = [](const QString& name) {
            return str("abc").contains(name, Qt::CaseInsensitive);
        };
        ports.problems = [this] { return problems; };
        ports.openForm = [this] { events += str("open"); };
        ports.load = [this](const QString& name) {
            if (bIsDamaged && name == u'b')
                throw data::DataError::verbatim(data::ErrorKind::Damaged, str("rivi 3"));
            loaded = name;
            return true;
        };
        ports.run = [this] {
            events += str("run ") + loaded;
            return results[loaded];
        };
        ports.generalLog = [this](const QString& line) { events += str("general: ") + line; };
        ports.standardError = [this](const QString& line) { events += str("error: ") + line; };
        ports.changeLog = [this](const QString& line) { events += line; };
        return runBatch({batch, str("lista"), listIsUnreadable}, ports);
    }
};

TEST(Batch, RunsTheListInOrderUnlessSomethingForbidsIt) {
    const QString a = str("|Aloitetaan muutos määrittelylle: a|run a");
    const QString c = str("|Aloitetaan muutos määrittelylle: c|run c");
    const std::tuple<const char*, bool, const char*, bool, ExitStatus, QString> cases[] = {
        {"c - a -", false, "", false, ExitStatus::Done, str("general: lista|open") + c + a},
        {"C", false, "", false, ExitStatus::Done,
         str("general: lista|open|Aloitetaan muutos määrittelylle: C|run C")},
        {"-", false, "", false, ExitStatus::Done, str("general: lista|error: lista|open")},
        {"x a", true, "luokat", false, ExitStatus::AlreadyRun,
         str("general: Taksavaihe on kertaalleen ajettu")},
        {"a b x y", false, "luokat", false, ExitStatus::Unavailable,
         str("general: lista|Määrittelyä ei löydy, eräajoa ei tehdä: x|"
             "error: Määrittelyä ei löydy, eräajoa ei tehdä: x|"
             "Määrittelyä ei löydy, eräajoa ei tehdä: y|"
             "error: Määrittelyä ei löydy, eräajoa ei tehdä: y")},
        {"a", false, "luokat|luettelo", false, ExitStatus::Failed,
         str("general: lista|Virhe: luokat|Virhe: luettelo")},
        {"a b c", false, "", true, ExitStatus::Failed,
         str("general: lista|open") + a + str("|Määrittelyä ei ajeta: \"b\": rivi 3") + c},
    };
    for (const auto& [list, marked, problems, bIsDamaged, status, events] : cases) {
        Recorder r;
        r.marked = marked;
        r.problems = str(problems).split(u'|', Qt::SkipEmptyParts);
        r.bIsDamaged = bIsDamaged;
        EXPECT_EQ(r.run(list), status) << list;
        EXPECT_EQ(r.events.join(u'|'), events) << list;
    }

    Recorder r;
    r.listIsUnreadable = true;
    EXPECT_EQ(r.run("-"), ExitStatus::Unavailable);
    EXPECT_EQ(r.events.join(u'|'), str("general: lista|error: lista"));
    r.marked = true;  // looked at first
    EXPECT_EQ(r.run("-"), ExitStatus::AlreadyRun);
}

TEST(Batch, AFailedDefinitionFailsTheBatchAndOnlyACancelStopsIt) {
    RunResult bad[4];
    bad[0].refused = true;
    bad[1].failedSteps = 1;
    bad[2].skippedProducts = 1;
    bad[3].cancelled = true;
    for (const RunResult& result : bad) {
        Recorder r;
        r.results[str("a")] = result;
        EXPECT_EQ(r.run("a b - c"), ExitStatus::Failed);
        EXPECT_EQ(r.events.filter(str("run")).join(u'|'),
                  str(result.cancelled ? "run a" : "run a|run b|run c"));
    }
}

TEST(BuildStamp, ShowsLocalTimeOrDateTimeZero) {
    const QDateTime built(QDate(2024, 9, 5), QTime(14, 3, 7));
    EXPECT_EQ(shell::buildStampText(built.toSecsSinceEpoch()), str("05.09.2024 14:03:07"));
    EXPECT_EQ(shell::buildStampText(std::nullopt), str("30.12.1899 00:00:00"));
}

}  // namespace
