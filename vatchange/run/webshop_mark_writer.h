#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "data/engine/engine.h"

namespace vatchange {

/// Writes web shop change marks to table WEBKLIITOS.
///
/// Each request appends a row after the earlier ones of the same table name and key. The web shop
/// uses the latest row of a key, so its letter combines the pending and the new mark: see
/// resultingLetter.
///
/// If the web shop log is on (ZAV.INI, section "VERKKOKAUPPA", key "Loki" = 1), each request is
/// also logged to "WEBKAUPPA.LOG" in the company's data folder, in change log format. The setting
/// is read once.
class WebShopMarkWriter {
  public:
    explicit WebShopMarkWriter(data::Database& database);
    ~WebShopMarkWriter();
    WebShopMarkWriter(const WebShopMarkWriter&) = delete;
    WebShopMarkWriter& operator=(const WebShopMarkWriter&) = delete;

    using Report = std::function<void(const QString& text)>;

    /// Inserts a row with the current date and time. Letters: 'M' modified, 'P' removed from the
    /// web shop, 'L' added. Reports a failure as "VIRHE: TryPost -> ", the error text and a blank;
    /// does not throw.
    void mark(const QString& tableName, const QString& key, QChar letter, const Report& report);

    /// See resultingWebShopLetter().
    static QChar resultingLetter(QChar pending, QChar letter);

  private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

}  // namespace vatchange
