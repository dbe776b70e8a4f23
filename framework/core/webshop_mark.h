#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "data/engine.h"

namespace framework {

/// Writes a web shop change mark: records in table WEBKLIITOS that a row changed for the web shop.
///
/// One pending mark per table name and key is enough for the web shop, which rereads the row when
/// it takes the mark. How an earlier pending mark and the new letter combine is settled here: see
/// settledLetter.
class WebShopMarkWriter {
  public:
    explicit WebShopMarkWriter(data::Database& database);
    ~WebShopMarkWriter();

    /// Letter 'M' modified, 'P' taken off the web shop, 'L' added. Inserts a row with the current
    /// date and time unless the pending mark says the same already. A failed insert is reported as
    /// "VIRHE: TryPost -> " and the error text through `report`, and the caller goes on.
    void mark(const QString& tableName, const QString& key, QChar letter,
              const std::function<void(const QString&)>& report);

    /// The letter to store, from the latest pending one (null: none) and the new one.
    static QChar settledLetter(QChar pending, QChar letter);

  private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

}  // namespace framework
