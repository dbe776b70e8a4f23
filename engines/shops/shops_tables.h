#pragma once

#include <memory>
#include <optional>

#include "data/catalogue/catalogue.h"
#include "engines/data_names.h"
#include "engines/shops/file_cursor.h"
#include "engines/shops/shops_database.h"

namespace engines::shops {

/// The record tables of one company of the shops' engine. A table is opened by the database's name;
/// where the engine knows none of that name, by the file that the catalogue in the company's folder
/// tells.
class ShopsTables {
  public:
    /// @throws DataError(NoConnection) without client library or engine.
    explicit ShopsTables(ShopsDatabaseSettings settings);

    /// A session that was lost is started anew. The layout is the catalogue's, else the compiled
    /// dictionary's; it has to agree with what the file itself tells.
    /// @throws DataError(NoSuchTable, Damaged, NoConnection, ...) naming the table.
    std::unique_ptr<TableFile> openTable(const QString& tableName);

    QStringList tableNames();  ///< as the catalogue is now

    void setLockWait(std::chrono::milliseconds wait);

    /// As Database::inTransaction, for the records alone.
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
