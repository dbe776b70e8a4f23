#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

#include "data/engine/run_journal.h"

namespace vatchange {

/// A definition of a journaled batch.
struct BatchDefinition {
    QString name;
    QByteArray values;  ///< definitionNote() after loading; empty if it could not be read
    qint64 run = 0;     ///< its run; 0: not started, or refused
    bool finished = false;
};

/// An unattended batch as the run journal keeps it from before its first definition until all are
/// finished. A definition is unfinished as long as its run is, or if the batch never reached it.
struct Batch {
    qint64 after = 0;  ///< number of the last run before the batch
    std::vector<BatchDefinition> definitions;

    bool isFinished() const;
    /// Number of the first run that it began; 0 if none yet.
    qint64 firstRun() const;
    /// Whether names (case ignored), values and their order are the same.
    bool sameDefinitions(const Batch& other) const;
};

/// A new batch of these definitions. One that has an unfinished run of its own, made in the form,
/// resumes that.
Batch newBatch(data::RunJournal& journal, std::vector<BatchDefinition> definitions);

/// The stored batch, its definitions' runs and ends brought up to date from the journal's runs: the
/// process may have died before it stored them, and a run may have been resumed or accepted since.
/// Nothing if no batch is stored.
/// @throws data::DataError.
std::optional<Batch> readBatch(data::RunJournal& journal);
void storeBatch(data::RunJournal& journal, const Batch& batch);
void removeBatch(data::RunJournal& journal);

}  // namespace vatchange
