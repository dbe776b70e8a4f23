#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "data/engine/engine.h"

namespace vatchange {

/// Writes a web shop change mark: records in table WEBKLIITOS that a row changed for the web shop.
///
/// Every request adds one row, which stands after the earlier ones of the same table name and key;
/// the latest row of a key is what the web shop goes by. So the new row's letter has to say what
/// the earlier pending one and the new one come to: see settledLetter.
///
/// When the web shop log is on (settings file ZAV.INI, section "VERKKOKAUPPA", key "Loki", value
/// 1), each request is also written to "WEBKAUPPA.LOG" in the company's data folder, in the form of
/// a change log line. The setting is read once.
class WebShopMarkWriter {
  public:
    explicit WebShopMarkWriter(data::Database& database);
    ~WebShopMarkWriter();
    WebShopMarkWriter(const WebShopMarkWriter&) = delete;
    WebShopMarkWriter& operator=(const WebShopMarkWriter&) = delete;

    using Report = std::function<void(const QString& text)>;

    /// Letter 'M' modified, 'P' taken off the web shop, 'L' added. Inserts a row with the current
    /// date and time. A failure is reported as "VIRHE: TryPost -> ", the error text and a blank,
    /// and the caller goes on; nothing is thrown.
    void mark(const QString& tableName, const QString& key, QChar letter, const Report& report);

    /// The letter to store, from the latest pending one (null: none) and the new one. The new one
    /// holds, but for a row that the web shop has not been given yet: modified before that, it is
    /// still to be added ('L' and 'M' give 'L'). A row that was to be taken off ('P') and is
    /// modified or added since is on the web shop again, so 'M' or 'L' replaces the 'P'.
    static QChar settledLetter(QChar pending, QChar letter);

  private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

}  // namespace vatchange
