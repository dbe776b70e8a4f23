#pragma once

#include <QDateTime>
#include <QString>
#include <memory>
#include <vector>

#include "company/private_copy.h"
#include "vatchange/run/run_summary.h"

namespace vatchange {

/// Room on the disk that a rehearsal of the current company takes.
struct RehearsalRoom {
    QString folder;     ///< where it is taken: the company's folder KOEAJO
    qint64 copied = 0;  ///< bytes of the company that are copied
    qint64 needed = 0;  ///< the copy, what the run adds to it, and the results
    qint64 free = 0;    ///< -1: not known

    bool enough() const { return free < 0 || needed <= free; }
    /// "Koeajo kopioi 462 Mt ja tarvitsee ...", in Finnish.
    QString text() const;
};
/// @throws data::DataError if the company's files cannot be read.
RehearsalRoom rehearsalRoom();

/// A rehearsal: runs of definitions on a private copy of the current company. What stays is a
/// folder with the results, KOEAJO/<yyyy-mm-dd hhmmss>: the change log of its runs, their changes
/// (muutokset.csv), their report (raportti.pdf, by the caller) and a description (koeajo.ini). The
/// copy disappears with the object.
class Rehearsal {
  public:
    /// Copies the company and opens the copy; the object has to be destroyed before the company is
    /// changed. @return nullptr if `progress` stopped it; nothing is left then.
    /// @throws data::DataError; DiskFull if there is not enough room, before anything is copied.
    static std::unique_ptr<Rehearsal> begin(const company::CopyProgress& progress);
    ~Rehearsal();
    Rehearsal(const Rehearsal&) = delete;
    Rehearsal& operator=(const Rehearsal&) = delete;

    /// Full path of the folder with the results.
    const QString& folder() const { return m_folder; }
    QString file(const QString& name) const;
    static inline const QString kReportFile = QStringLiteral("raportti.pdf");

    /// The copy. What runs on it also needs it as the current company: see run() and takeIntoUse().
    data::Database& database();

    /// Runs a definition on the copy. While `ports` are called, the current company is the real
    /// one, so windows go on with that; the change log of the run is the rehearsal's.
    RunSummary run(const LoadedDefinition& definition, RunPorts& ports, const RunOptions& options);

    /// Makes the copy the current company for the life of this object, and the database of the
    /// process's connections, which must not have been used yet: for a program that does nothing
    /// but rehearse.
    void takeIntoUse();

    /// Removes the results: the rehearsal was stopped.
    void discard();
    /// Whether there is something to keep: runs, or lines of the change log.
    bool holdsResults(const std::vector<qint64>& runs) const;
    /// Writes the list of changes of these runs and the description of the rehearsal.
    /// @throws data::DataError naming the file.
    void writeResults(const std::vector<qint64>& runs);

  private:
    Rehearsal() = default;
    void makeFolder();

    QString m_all;  // the folder of all rehearsals
    QString m_folder;
    QDateTime m_started;
    std::unique_ptr<company::PrivateCopy> m_copy;
    std::unique_ptr<data::Database> m_database;
    std::unique_ptr<company::CompanySubstitution> m_inUse;
};

/// Title and first words of a rehearsal's report and windows: "Koeajo: Alv 24 - 25,5".
QString rehearsalTitle(data::Database& copy, const std::vector<qint64>& runs);
inline const QString kRehearsalNote =
    QStringLiteral("Koeajo yrityksen kopiolla: yrityksen tiedot eivät muuttuneet.");

/// Removes copies that rehearsals of the current company left when their processes died. Those that
/// are going on are not touched.
void removeAbandonedCopies();

}  // namespace vatchange
