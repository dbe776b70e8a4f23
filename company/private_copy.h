#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "company/company.h"
#include "data/engine/engine.h"
#include "data/lock/work_folder.h"

namespace company {

/// Gets the part that is being copied and how much of it is done; false stops.
using CopyProgress = std::function<bool(const QString& what, qint64 done, qint64 total)>;

/// A private copy of the current company, in a hidden folder that disappears with the object: its
/// database (of the shops' engine: some tables of it, in an embedded database), its run journal,
/// its saved definitions and the note of an older version's unfinished run. Making it changes no
/// byte of the company's files and takes no lock that others wait for.
class PrivateCopy {
  public:
    /// Bytes of what is copied. @throws data::DataError.
    static qint64 size(const QStringList& tables);

    /// Copies into a new folder inside `folder`; copies that dead processes left there are removed.
    /// `tables`: those that a copy of a company of the shops' engine needs.
    /// @return nullptr if `progress` stopped it. @throws data::DataError.
    static std::unique_ptr<PrivateCopy> make(const QString& folder, const QStringList& tables,
                                             const CopyProgress& progress);

    /// The copy as a company, of the same name.
    const Company& company() const { return m_company; }
    std::unique_ptr<data::Database> open() const;
    /// Whether the company's own engine is another one than the copy's.
    bool isConverted() const { return m_converted; }

  private:
    explicit PrivateCopy(const QString& folder);

    data::WorkFolder m_folder;
    Company m_company;
    bool m_converted = false;
};

/// Whether another process is in a run of the current company. Creates no lock file.
bool runGoesOn();

}  // namespace company
