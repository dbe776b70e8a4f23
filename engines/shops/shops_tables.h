#pragma once

#include <memory>
#include <optional>

#include "data/catalogue/catalogue.h"
#include "engines/data_names.h"
#include "engines/shops/file_cursor.h"
#include "engines/shops/shops_database.h"

namespace engines::shops {

/// The record tables of one company of the shops' engine. Opens tables by database name; if the
/// engine does not know the name, by the files of the catalogue in the company's folder.
class ShopsTables {
  public:
    /// @throws DataError(NoConnection) without client library or engine.
    explicit ShopsTables(ShopsDatabaseSettings settings);

    /// Replaces a lost session. The layout comes from the catalogue, else from the compiled
    /// dictionary, and must agree with the file's own description.
    /// @throws DataError(NoSuchTable, Damaged, NoConnection, ...) naming the table.
    std::unique_ptr<TableFile> openTable(const QString& tableName);

    QStringList tableNames();  ///< of the current catalogue

    void setLockWait(std::chrono::milliseconds wait);

    /// As Database::inTransaction, for records only.
    void inTransaction(const std::function<void()>& body);

  private:
    void requireSession();
    const Catalogue& catalogue();
    Catalogue readCatalogue();
    std::unique_ptr<FileCursor> openCursor(const QString& tableName, const QString& location);
    QByteArray uriOf(const QString& tableName) const;
    QByteArray pathOf(const QString& tableName, const QString& location) const;

    ShopsDatabaseSettings m_settings;
    std::shared_ptr<CallSession> m_session;
    std::chrono::milliseconds m_lockWait{2000};
    std::optional<Catalogue> m_catalogue;
    bool m_byFile = false;  // the engine does not know the database's name
};

}  // namespace engines::shops
