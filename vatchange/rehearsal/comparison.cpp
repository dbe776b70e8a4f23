#include "vatchange/rehearsal/comparison.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QMap>
#include <array>
#include <cmath>

#include "vatchange/changes/changes_csv.h"
#include "vatchange/journal/ignored_changes.h"
#include "vatchange/journal/run_notes.h"
#include "vatchange/rehearsal/results.h"

namespace vatchange {

namespace {

/// Lines without a counterpart so far; beyond that the data are too different to be compared.
constexpr qsizetype kMaxOpen = 300000;

bool same(const QString& name, const char* other) {
    return name.compare(QLatin1String(other), Qt::CaseInsensitive) == 0;
}

/// Times of change, also those of what a run inserts, and the run mark.
bool isIgnored(const ChangeLine& line) {
    if (isChangeDate(line.table, line.field) || isRunMark(line.table, line.key))
        return true;
    return (same(line.table, "HR") &&
            (same(line.field, "TulPvm") || same(line.field, "TulAika"))) ||
           (same(line.table, "WEBKLIITOS") &&
            (same(line.field, "MuutosPvm") || same(line.field, "MuutosKlo")));
}

bool equal(const ChangeLine& one, const ChangeLine& other) {
    return one.after == other.after && one.before == other.before && one.field == other.field &&
           one.key == other.key && one.table == other.table && one.operation == other.operation;
}

/// A line as a text, without its number; the parts are those of ChangeLine.
constexpr QChar kBetween(0x1F);
enum Part { kOperation, kTable, kKey, kField, kBefore, kAfter };

QString lineText(const ChangeLine& line) {
    return line.operation + kBetween + line.table + kBetween + line.key + kBetween + line.field +
           kBetween + line.before + kBetween + line.after;
}

/// The lines of a rehearsal's run, one after the other.
class RehearsedLines {
  public:
    RehearsedLines(QIODevice& device, const RehearsedRun& run) : m_reader(device), m_run(run) {}

    bool next(ChangeLine& line) {
        while (m_reader.next(line) && line.seq <= m_run.last) {
            if (line.seq >= m_run.first && !isIgnored(line))
                return true;
        }
        return false;
    }

  private:
    ChangesCsvReader m_reader;
    const RehearsedRun& m_run;
};

/// Lines that were read on one side and not yet on the other. Both sides are read in step, so there
/// are few of them unless much is different.
class OpenLines {
  public:
    struct Open {
        int count = 0;              ///< above 0: rehearsed, below: made
        data::RecordId record = 0;  ///< of one that was made
    };
    /// `side`: 1 rehearsed, -1 made.
    void add(const ChangeLine& line, int side) {
        const QString text = lineText(line);
        Open& open = m_lines[text];
        if (open.count * side < 0)
            ++m_matched;
        open.count += side;
        if (line.record != 0)
            open.record = line.record;
        if (open.count == 0)
            m_lines.remove(text);
    }
    bool tooMany() const { return m_lines.size() > kMaxOpen; }
    qint64 matched() const { return m_matched; }
    const QHash<QString, Open>& lines() const { return m_lines; }

  private:
    QHash<QString, Open> m_lines;
    qint64 m_matched = 0;
};

constexpr double kNearly = 1.000001;  // doubles are not exact

/// How far prices may differ that SQL rounds: one rounding step.
double roundingStep(const ChangeDefinition& definition) {
    static constexpr std::array kSteps{0.001, 0.01, 0.05, 0.1, 0.0001};
    return kSteps.at(static_cast<size_t>(definition.roundingStep));
}

/// Differences by table, key and field; where several rows share a key, those of one side are
/// paired with those of the other as they come.
class DifferenceList {
    struct Line;

  public:
    DifferenceList(const OpenLines& lines, std::optional<double> storeTolerance) {
        struct Sides {
            QList<Line> rehearsed;
            QList<Line> made;
        };
        QMap<QString, Sides> places;
        for (auto open = lines.lines().begin(); open != lines.lines().end(); ++open) {
            const Line line{open.key().split(kBetween), open->record};
            Sides& sides = places[line.parts[kTable] + kBetween + line.parts[kKey] + kBetween +
                                  line.parts[kField]];
            for (int i = 0; i < std::abs(open->count); ++i)
                (open->count > 0 ? sides.rehearsed : sides.made).append(line);
        }
        for (Sides& sides : places) {
            std::sort(sides.rehearsed.begin(), sides.rehearsed.end());
            std::sort(sides.made.begin(), sides.made.end());
            const qsizetype pairs = std::max(sides.rehearsed.size(), sides.made.size());
            for (qsizetype i = 0; i < pairs; ++i)
                add(sides.rehearsed.value(i), sides.made.value(i), storeTolerance);
        }
    }
    std::vector<RehearsalDifference> first;
    qint64 count = 0;
    qint64 alike = 0;  ///< within the tolerance

  private:
    /// A line by its parts; without any on a side that has none.
    struct Line {
        QStringList parts;
        data::RecordId record = 0;
        bool operator<(const Line& other) const { return parts < other.parts; }
    };

    void add(const Line& rehearsed, const Line& made, std::optional<double> storeTolerance) {
        using Kind = RehearsalDifference::Kind;
        const QStringList& before = rehearsed.parts;
        const QStringList& now = made.parts;
        if (storeTolerance && !before.isEmpty() && !now.isEmpty() &&
            same(now[kTable], "MYYMALAHINNAT") && now[kBefore] == before[kBefore] &&
            std::abs(now[kAfter].toDouble() - before[kAfter].toDouble()) <=
                *storeTolerance * kNearly) {
            ++alike;
            return;
        }
        ++count;
        if (first.size() == RehearsalComparison::kKept)
            return;
        const QStringList& place = now.isEmpty() ? before : now;
        const Kind kind = now.isEmpty()      ? Kind::OnlyRehearsed
                          : before.isEmpty() ? Kind::OnlyMade
                                             : Kind::Otherwise;
        first.push_back({kind, place[kTable], made.record, place[kKey], place[kField],
                         before.value(kBefore), before.value(kAfter), now.value(kBefore),
                         now.value(kAfter)});
    }
};

/// Whether a run of these values has been made since the rehearsal, other than `run`.
bool hasFollowed(data::RunJournal& journal, const RehearsedRun& rehearsed, qint64 run) {
    for (const data::JournalRun& other : journal.runs()) {
        if (other.number != run && other.number >= rehearsed.run &&
            other.kind == data::RunKind::Change &&
            other.definition.compare(rehearsed.definition, Qt::CaseInsensitive) == 0 &&
            valuesDigest(journal, other.number) == rehearsed.values)
            return true;
    }
    return false;
}

std::optional<RehearsedRun> rehearsalOf(data::RunJournal& journal, qint64 run) {
    const std::optional<data::JournalRun> head = journal.run(run);
    const QByteArray values = valuesDigest(journal, run);
    if (!head || values.isEmpty())
        return std::nullopt;
    for (const QString& folder : rehearsalFolders()) {
        for (const RehearsedRun& rehearsed : readDescription(folder)) {
            if (rehearsed.values != values || !rehearsed.whole || rehearsed.run > run ||
                rehearsed.definition.compare(head->definition, Qt::CaseInsensitive) != 0)
                continue;
            if (!QFileInfo::exists(QDir(folder).filePath(kChangesFile)) ||
                hasFollowed(journal, rehearsed, run))
                return std::nullopt;
            return rehearsed;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<RehearsalComparison> compareWithRehearsal(data::Database& database, qint64 run) {
    data::RunJournal* journal = database.journal();
    if (journal == nullptr)
        return std::nullopt;
    const std::optional<RehearsedRun> rehearsed = rehearsalOf(*journal, run);
    if (!rehearsed)
        return std::nullopt;
    QFile file(QDir(rehearsed->folder).filePath(kChangesFile));
    if (!file.open(QIODevice::ReadOnly))
        throw data::DataError(data::ErrorKind::Io, file.fileName(), file.errorString());

    RehearsalComparison comparison;
    comparison.rehearsal = QDir(rehearsed->folder).dirName();
    RehearsedLines lines(file, *rehearsed);
    OpenLines open;
    ChangeLine other;
    bool atEnd = false;
    visitChangeLines(database, run, 0, [&](const ChangeLine& line) {
        if (open.tooMany() || isIgnored(line))
            return;
        atEnd = atEnd || !lines.next(other);
        if (!atEnd && equal(line, other)) {
            ++comparison.same;
            return;
        }
        open.add(line, -1);
        if (!atEnd)
            open.add(other, 1);
    });
    while (!atEnd && !open.tooMany() && lines.next(other))
        open.add(other, 1);

    const std::optional<ChangeDefinition> definition = definitionOfRun(*journal, run);
    const DifferenceList differences(open, rehearsed->rounded && definition
                                               ? std::optional(roundingStep(*definition))
                                               : std::nullopt);
    comparison.same += open.matched() + differences.alike;
    comparison.differences = differences.count;
    comparison.more = open.tooMany();
    comparison.first = differences.first;
    return comparison;
}

}  // namespace vatchange
