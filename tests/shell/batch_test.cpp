#include "shell/batch.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <map>

#include "shell/build_stamp.h"
#include "shell/start_up.h"
#include "tests/support/test_company.h"
#include "vatchange/journal/run_notes.h"

using shell::ExitStatus;
using test::str;
using vatchange::RunResult;

namespace {

// "a", "b" and "c" are saved; "b" can be damaged; runs end as `results` says. The company's journal
// knows the runs.
struct Recorder {
    explicit Recorder(const test::TestCompany& shop) : database(shop.otherProgram()) {}

    std::unique_ptr<data::Database> database;  // of the process that runs the batch
    bool marked = false;
    bool runAnyway = false;
    QStringList problems;
    bool bIsDamaged = false;
    std::map<QString, RunResult> results;
    QString dies;       // during this definition's run
    QString endsAfter;  // the system asks for the end during this definition's run
    QString edited;     // its values are others than those of the first start
    QStringList events;
    QString loaded;
    bool endRequested = false;
    bool listIsUnreadable = false;

    QByteArray values(const QString& name) const {
        vatchange::ChangeDefinition definition;
        definition.sourceClass = name[0].toLower().unicode();
        definition.products = name != edited;
        return vatchange::definitionNote(definition);
    }
    RunResult result(const vatchange::RunOptions& options) {
        RunResult result = results[loaded];
        events += (options.resume == 0 ? str("run ") : str("resume %1 ").arg(options.resume)) +
                  loaded + (options.batch == 0 ? QString() : str(" of %1").arg(options.batch));
        endRequested = loaded == endsAfter;
        if (result.refused)
            return result;
        data::RunJournal& journal = *database->journal();
        data::JournalRun head;
        head.definition = loaded;
        head.batch = options.batch;
        head.started = test::changeMorning();
        result.run = options.resume;
        if (options.resume != 0)
            journal.resume(options.resume);
        else
            result.run = journal.begin(head, {{vatchange::kDefinitionNote, values(loaded)}});
        if (loaded == dies)
            throw Death();
        journal.end(result.state);
        return result;
    }

    /// The events without those about the list.
    QString told() const { return QStringList(events).filter(kNotAboutList).join(u'|'); }

    static inline const QRegularExpression kNotAboutList{str("^(?!general: lista|error: lista)")};
    struct Death {};
    ExitStatus run(const char* list) {
        const QStringList names = str(list).split(u' ');  // "-" is an empty name
        company::BatchList batch;
        for (int i = 0; i < names.size(); ++i)
            batch[i] = names[i] == u'-' ? QString() : names[i];
        shell::BatchPorts ports;
        ports.database = database.get();
        ports.runAnyway = runAnyway;
        ports.alreadyRun = [this] { return marked && !runAnyway; };
        ports.isSaved = [](const QString& name) {
            return str("abc").contains(name, Qt::CaseInsensitive);
        };
        ports.values = [this](const QString& name) { return values(name); };
        ports.problems = [this] { return problems; };
        ports.openForm = [this] { events += str("open"); };
        ports.load = [this](const QString& name) {
            if (bIsDamaged && name == u'b')
                throw data::DataError::verbatim(data::ErrorKind::Damaged, str("rivi 3"));
            loaded = name;
            return true;
        };
        ports.run = [this](const vatchange::RunOptions& options) { return result(options); };
        ports.endRequested = [this] { return endRequested; };
        ports.generalLog = [this](const QString& line) { events += str("general: ") + line; };
        ports.standardError = [this](const QString& line) { events += str("error: ") + line; };
        ports.changeLog = [this](const QString& line) { events += line; };
        return runBatch({batch, {}, str("lista"), listIsUnreadable}, ports);
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
    const test::TestCompany shop({});
    for (const auto& [list, marked, problems, bIsDamaged, status, events] : cases) {
        Recorder r(shop);
        r.marked = marked;
        r.problems = str(problems).split(u'|', Qt::SkipEmptyParts);
        r.bIsDamaged = bIsDamaged;
        EXPECT_EQ(r.run(list), status) << list;
        r.events.replaceInStrings(QRegularExpression(str("^(run .*) of \\d+$")), str("\\1"));
        EXPECT_EQ(r.events.join(u'|'), events) << list;
    }

    Recorder r(shop);
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
        const test::TestCompany shop({});
        Recorder r(shop);
        r.results[str("a")] = result;
        EXPECT_EQ(r.run("a b - c"), ExitStatus::Failed);
        EXPECT_EQ(r.events.filter(str("run")).join(u'|'),
                  str(result.cancelled ? "run a"
                      : result.refused ? "run a|run b|run c of 1"
                                       : "run a|run b of 1|run c of 1"));
    }
}

// A batch of a, b and c that was started once before: what the second start does, with "/E" alone
// and the run mark set.
TEST(Batch, ContinuesWhatAnEarlierStartLeftUnfinished) {
    const QString on = str("Jatketaan keskeytynyttä ajoa: eräajosta on jäljellä ");
    const QString runC = str("|Aloitetaan muutos määrittelylle: c|run c of 1");
    const QString runB = str("|Aloitetaan muutos määrittelylle: b|run b of 1");
    const QString already = str("general: Taksavaihe on kertaalleen ajettu");
    const auto ended = [](data::RunState state) {
        RunResult result;
        result.state = state;
        result.cancelled = state == data::RunState::Stopped;
        result.skippedProducts = state == data::RunState::Incomplete;
        result.failedSteps = state == data::RunState::Errors;
        return result;
    };
    const auto refused = [](bool blocked) {
        RunResult result;
        result.refused = true;
        result.blocked = blocked;
        return result;
    };
    const struct {
        const char* what;
        RunResult b;
        const char* dies;
        const char* endsAfter;
        ExitStatus second;
        QString events;
    } cases[] = {
        {"died", {}, "b", "", ExitStatus::Done, on + str("b, c|open|resume 2 b of 1") + runC},
        {"stopped", ended(data::RunState::Stopped), "", "", ExitStatus::Done,
         on + str("b, c|open|resume 2 b of 1") + runC},
        {"incomplete", ended(data::RunState::Incomplete), "", "", ExitStatus::Done,
         on + str("b|open|resume 2 b of 1")},
        {"asked to end", {}, "", "a", ExitStatus::Done, on + str("b, c|open") + runB + runC},
        {"waits for another run", refused(true), "", "", ExitStatus::Done,
         on + str("b|open") + runB},
        {"errors", ended(data::RunState::Errors), "", "", ExitStatus::AlreadyRun, already},
        {"refused", refused(false), "", "", ExitStatus::AlreadyRun, already},
    };
    for (const auto& t : cases) {
        SCOPED_TRACE(t.what);
        const test::TestCompany shop({});
        {
            Recorder first(shop);
            first.results[str("b")] = t.b;
            first.dies = str(t.dies);
            first.endsAfter = str(t.endsAfter);
            if (*t.dies != 0)
                EXPECT_THROW(first.run("a b c"), Recorder::Death);
            else
                EXPECT_EQ(first.run("a b c"), ExitStatus::Failed);
        }
        for (const ExitStatus expected : {t.second, ExitStatus::AlreadyRun}) {
            Recorder next(shop);
            next.marked = true;
            EXPECT_EQ(next.run("A b c"), expected);
            EXPECT_EQ(next.told(), expected == ExitStatus::AlreadyRun ? already : t.events);
        }
    }
}

TEST(Batch, AnEditedBatchIsNotContinued) {
    const QString notContinued =
        str("Virhe: keskeytynyttä eräajoa ei jatketa, koska sen luetteloa tai määrittelyä on "
            "muutettu. Palauta ne ennalleen, tai ");
    const QString accept =
        str("jatka, peru tai hyväksy ajo 2 (määrittely b, 01.09.2024 06:30:00, kesken) "
            "(lomakkeelta, zavdb undo \"%1\" 2 tai zavdb accept-run \"%1\" 2).");
    const QString givenUp =
        str("Huomaa: aiempaa eräajoa ei jatketa, koska sen luetteloa tai "
            "määrittelyä on muutettu; siitä jäi ajamatta c");
    const test::TestCompany shop({});
    const auto start = [&shop](const char* list, const char* edited, bool runAnyway = false) {
        Recorder r(shop);
        r.marked = true;
        r.runAnyway = runAnyway;
        r.edited = str(edited);
        const ExitStatus status = r.run(list);
        return str("%1 ").arg(static_cast<int>(status)) + r.told();
    };
    Recorder dying(shop);
    dying.dies = str("b");
    EXPECT_THROW(dying.run("a b c"), Recorder::Death);
    dying.database.reset();
    for (const bool runAnyway : {false, true}) {
        for (const auto& [list, edited] :
             {std::pair{"a b", ""}, {"b a c", ""}, {"a b c -", "c"}, {"-", ""}})
            EXPECT_EQ(start(list, edited, runAnyway),
                      str("1 ") + notContinued + accept.arg(company::currentCompany().name))
                << list;
    }
    // a run that keeps the lock: nothing is told about a batch that may be its own
    ASSERT_TRUE(shop.database().beginRun());
    EXPECT_EQ(start("a b c", ""), str("1 ") + vatchange::kOtherRunText);
    shop.database().endRun();

    shop.database().journal()->setState(2, data::RunState::Accepted);
    EXPECT_EQ(start("a b", ""), str("3 ") + givenUp + str("|general: ") + shell::kAlreadyRunText);
    EXPECT_EQ(start("a b c", ""), str("3 general: ") + shell::kAlreadyRunText);
}

TEST(Batch, AnEditedBatchWithoutUnfinishedRunMakesWayForTheNewListOnlyWithU) {
    const test::TestCompany shop({});
    Recorder first(shop);
    first.endsAfter = str("a");
    EXPECT_EQ(first.run("a b"), ExitStatus::Failed);
    for (const bool runAnyway : {false, true}) {
        Recorder r(shop);
        r.marked = true;
        r.runAnyway = runAnyway;
        EXPECT_EQ(r.run("c"), runAnyway ? ExitStatus::Done : ExitStatus::Failed);
        EXPECT_EQ(r.told(),
                  runAnyway ? str("Huomaa: aiempaa eräajoa ei jatketa, koska sen luetteloa tai "
                                  "määrittelyä on muutettu; siitä jäi ajamatta b|open|"
                                  "Aloitetaan muutos määrittelylle: c|run c")
                            : str("Virhe: keskeytynyttä eräajoa ei jatketa, koska sen luetteloa "
                                  "tai määrittelyä on muutettu. Palauta ne ennalleen, tai aja uusi "
                                  "luettelo alusta valitsimella /U. Ajamatta jäi b."));
    }
}

TEST(Batch, ResumesARunThatTheFormLeftUnfinished) {
    const test::TestCompany shop({});
    Recorder form(shop);
    form.loaded = form.dies = str("b");
    EXPECT_THROW(form.result({}), Recorder::Death);
    form.database.reset();
    Recorder r(shop);
    EXPECT_EQ(r.run("a b"), ExitStatus::Done);
    EXPECT_EQ(r.told(), str("open|Aloitetaan muutos määrittelylle: a|run a|resume 1 b of 2"));
}

TEST(BuildStamp, ShowsLocalTimeOrDateTimeZero) {
    const QDateTime built(QDate(2024, 9, 5), QTime(14, 3, 7));
    EXPECT_EQ(shell::buildStampText(built.toSecsSinceEpoch()), str("05.09.2024 14:03:07"));
    EXPECT_EQ(shell::buildStampText(std::nullopt), str("30.12.1899 00:00:00"));
}

}  // namespace
