#pragma once

#include <optional>

#include "shell/batch.h"
#include "vatchange/journal/batch_note.h"

namespace shell {

/// How far a batch has come: kept in the run journal, if the database has one, so that a later
/// start can continue it.
class BatchProgress {
  public:
    /// Whether the journal holds a batch with something left to do.
    static bool unfinished(const BatchPorts& ports);

    /// Continues the unfinished batch of the journal if these are its definitions; says in the
    /// change log what it continues or gives up. To be created with the run lock held.
    BatchProgress(const BatchPorts& ports, const QStringList& names);

    /// Why the unfinished batch cannot be continued, in Finnish; empty if nothing is in the way.
    const QString& refusal() const { return m_refusal; }
    bool continues() const { return m_continues; }
    /// Stores a new batch of the definitions.
    void begin();

    struct Definition {
        QString name;
        qint64 resume = 0;  ///< the run to resume; 0: a new one
    };
    /// The next definition that is not finished and was not tried yet; valid until the next call.
    const Definition* next();
    /// The one that next() returned was not run at all, for a fault of its own.
    void refused();
    /// The one that next() returned ended like this.
    void ended(const vatchange::RunResult& result);

    /// Number of the batch's first run; 0 if it has none yet.
    qint64 firstRun() const { return m_batch.firstRun(); }
    /// The runs of the batch so far, also those of earlier starts.
    std::vector<qint64> runs() const;
    /// Whether the journal has taken everything so far.
    bool stored() const { return m_stored; }

  private:
    QString editedProblem(const vatchange::Batch& earlier) const;
    void store();

    const BatchPorts& m_ports;
    vatchange::Batch m_batch;
    size_t m_tried = 0;  // definitions before this one are done with
    Definition m_current;
    QString m_refusal;
    bool m_continues = false;
    bool m_stored = true;
};

}  // namespace shell
