#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "data/engine/engine.h"

namespace tools {

/// Each table's fields, in order, and key segments in the catalogue.
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

/// Importing catalogue rows does not change the stored tables, so their description must stay the
/// same. @throws CommandError naming a table whose description differs.
void requireSameTables(const Catalogue& before, const Catalogue& after);

/// Changes a table's rows in one transaction. Rolls back if the table belongs to the catalogue and
/// its description of the stored tables would change.
void changeTable(data::Database& database, const data::TableFile& table,
                 const std::function<void()>& change);

}  // namespace tools
