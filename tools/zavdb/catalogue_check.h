#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "data/engine/engine.h"

namespace tools {

/// What the catalogue says of each table: its fields in order and its key segments.
using Catalogue = QMap<QString, QStringList>;

bool isCatalogueTable(const QString& table);

/// Reads the catalogue's own tables. They are opened once, so that they can still be read while a
/// transaction rewrites the rows that describe them.
class CatalogueReader {
  public:
    explicit CatalogueReader(data::Database& database);
    Catalogue read();

  private:
    std::unique_ptr<data::TableFile> m_files;
    std::unique_ptr<data::TableFile> m_fields;
    std::unique_ptr<data::TableFile> m_indexes;
};

/// The stored tables stay as they are when rows of the catalogue are imported, so it has to say the
/// same of them afterwards. @throws CommandError naming a table of which it does not.
void requireSameTables(const Catalogue& before, const Catalogue& after);

/// Runs a change of a table's rows as one transaction, which is undone when the rows are the
/// catalogue's and say something else of the stored tables afterwards.
void changeTable(data::Database& database, const data::TableFile& table,
                 const std::function<void()>& change);

}  // namespace tools
