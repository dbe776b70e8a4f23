#pragma once

#include <QString>
#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "data/engine/engine.h"
#include "vatchange/journal/rehearsal_note.h"

namespace vatchange {

/// What verification says about one record, field or price.
enum class FindingKind {
    LeftBehind,         ///< still carries the source class, and no rule says that it should
    Gone,               ///< a record that the run changed or inserted no longer exists
    Returned,           ///< a record that the run deleted exists
    ChangedSince,       ///< a field no longer holds what the run left
    EmptyVat0,          ///< a price above 0 became 0 because its VAT-free price was empty
    NotPositive,        ///< a price above 0 became 0 or negative for another reason
    PriceUnchanged,     ///< the sales class changed, the price did not
    OtherThanRehearsed  ///< the rehearsal before the run changed it differently, or not at all
};
inline constexpr int kFindingKinds = 8;

/// Why a record still carries the source class.
enum class LeftReason {
    Restriction,     ///< the definition's restrictions leave it out
    TableNotChosen,  ///< the definition does not convert its table
    Rule,            ///< a row or order of a kind that is never converted
    PassedOver,      ///< another program held the record
    OverLimit,       ///< a price would have changed by more than the definition allows
    NotFinished,     ///< the run was stopped or died before it
    StepFailed,
    ChangedSince,  ///< the run converted it; somebody has set the class back
    Undone,
    Unknown  ///< the run should have converted it
};
inline constexpr int kLeftReasons = 10;

/// Why a price stayed as it was although its class changed.
enum class UnchangedCause { None, Limit, Source, Coefficient, Rounding };

struct Finding {
    FindingKind kind = FindingKind::LeftBehind;
    LeftReason reason = LeftReason::Unknown;      ///< of LeftBehind
    UnchangedCause cause = UnchangedCause::None;  ///< of PriceUnchanged
    QString table;
    data::RecordId record = 0;
    QString key;      ///< the fields of key 0, joined by a blank
    QString field;    ///< as the catalogue writes it; empty for a whole record
    QString before;   ///< before the run; empty for a whole record
    QString after;    ///< what the run left
    QString present;  ///< what stands there now
    std::optional<RehearsalDifference> rehearsed = {};  ///< of OtherThanRehearsed
    qint64 laterRun = 0;  ///< the latest run after this one that changed the record; 0: none
};

/// A price field's changes in one table; each record once, from before the run to what it left.
struct PriceSums {
    QString table;
    QString field;
    qint64 count = 0;  ///< records in which it changed
    double before = 0.0;
    double after = 0.0;
    qint64 compared = 0;       ///< of them with a price above 0 before
    double meanPercent = 0.0;  ///< mean change of those, in percent
};

/// Records of a table that still carry the source class, by reason.
struct Remainder {
    QString table;
    LeftReason reason = LeftReason::Unknown;
    qint64 records = 0;
};

/// Records of a table that the run changed, each counted once.
struct TableRecords {
    QString table;
    qint64 records = 0;
};

struct Verification {
    qint64 run = 0;
    bool cancelled = false;             ///< by VerifyOptions::goOn: nothing else counts then
    qint64 changes = 0;                 ///< entries of the journal
    qint64 undone = 0;                  ///< of them taken back
    std::vector<TableRecords> records;  ///< labels, marks and the run mark too
    std::vector<PriceSums> sums;
    std::vector<Remainder> remaining;
    std::array<qint64, kFindingKinds> counts{};  ///< of all findings
    std::vector<Finding> findings;               ///< the first of each kind, see VerifyOptions

    qint64 count(FindingKind kind) const { return counts[static_cast<size_t>(kind)]; }
    qint64 left(const QString& table, LeftReason reason) const;
    /// A product, product group or order row that the run should have converted was left without a
    /// known reason: exit status 1 of the run.
    bool unexplained() const;
    /// Everything is as the run left it and nothing was left behind.
    bool holds() const;
};

struct VerifyOptions {
    int listed = 20;  ///< at most this many findings of a kind are kept
    std::function<void(const Finding&)> see = {};  ///< gets all findings
    /// Called between records, many times a second; returning false cancels.
    std::function<bool()> goOn = {};
    /// `see` also gets, as LeftBehind, what a rule leaves and is otherwise only counted.
    bool seeRules = false;
};

/// Holds a run's journal against the database's records, which are read in storage order or by
/// address, not by an index. The run mark, labels, web shop marks, dates and times of change and
/// the run's own undo count as no later changes. The run may be recording still.
/// @throws data::DataError; Gone if there is no such run, Damaged if a table's description has
/// changed since.
Verification verifyRun(data::Database& database, qint64 run, const VerifyOptions& options = {});

}  // namespace vatchange
