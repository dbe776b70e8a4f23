#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "data/engine/run_journal.h"

namespace vatchange {

/// A field that a run changed otherwise than its rehearsal had.
struct RehearsalDifference {
    enum class Kind {
        Otherwise,      ///< both changed it, from or to different values
        OnlyRehearsed,  ///< the run did not change it
        OnlyMade        ///< the rehearsal did not
    };
    Kind kind = Kind::Otherwise;
    QString table;
    data::RecordId record = 0;  ///< that the run changed; 0 if OnlyRehearsed
    QString key;                ///< the fields of key 0, joined by a blank
    QString field;              ///< as the catalogue writes it
    QString rehearsedBefore;    ///< empty if OnlyMade
    QString rehearsedAfter;
    QString before;  ///< empty if OnlyRehearsed
    QString after;

    bool operator==(const RehearsalDifference&) const = default;
};

/// A run compared with the rehearsal of the same definition that it followed. Stored with the run.
struct RehearsalComparison {
    /// At most this many differences are kept.
    static constexpr size_t kKept = 1000;

    QString rehearsal;       ///< name of its folder: "2024-08-31 120000"
    qint64 same = 0;         ///< fields changed alike
    qint64 differences = 0;  ///< all
    bool more = false;       ///< so many that counting was given up
    std::vector<RehearsalDifference> first;

    bool operator==(const RehearsalComparison&) const = default;
};

/// Stores the comparison with the run. @throws data::DataError.
void storeComparison(data::RunJournal& journal, qint64 run, const RehearsalComparison& comparison);
/// The stored comparison of a run; nothing if it was not compared. @throws data::DataError.
std::optional<RehearsalComparison> storedComparison(data::RunJournal& journal, qint64 run);

/// "ajo poikkeaa koeajosta 2024-08-31 120000: 3 eri tavalla muutettua kenttää."
QString comparisonText(const RehearsalComparison& comparison);

}  // namespace vatchange
