#include "vatchange/run/webshop_mark_writer.h"

#include <QDateTime>
#include <optional>

#include "company/company.h"
#include "company/connection_module.h"
#include "company/logs.h"
#include "data/clock.h"
#include "data/error.h"
#include "data/table/tb_table.h"
#include "framework/core/settings_table.h"
#include "vatchange/rules/web_shop_letters.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

struct WebShopMarkWriter::Data {
    data::Database& database;
    data::TtbTable table;
    std::optional<bool> logged;

    explicit Data(data::Database& db) : database(db) {}

    void log(const QString& tableName, const QString& key, QChar letter) {
        if (!logged)
            logged = framework::zavIniValue(database, QStringLiteral("VERKKOKAUPPA"),
                                            QStringLiteral("Loki")) == u"1";
        if (*logged)
            company::writeLogLine(company::dataFolderFile(QStringLiteral("WEBKAUPPA.LOG")),
                                  webShopLogText(tableName, key, letter));
    }

    QChar pendingLetter(const QString& tableName, const QString& key) {
        table.setRange({tableName, key}, {tableName, key});
        table.last();
        if (table.isEmpty())
            return {};
        const QString letter = table.fieldByName(QStringLiteral("Tyyppi")).asString();
        return letter.isEmpty() ? QChar() : letter.front();
    }

    void insert(const QString& tableName, const QString& key, QChar letter) {
        const QDateTime now = data::Clock::now();
        table.insert();
        table.fieldByName(QStringLiteral("taulu")).setString(tableName);
        table.fieldByName(QStringLiteral("Tunniste")).setString(key);
        table.fieldByName(QStringLiteral("Tyyppi")).setString(letter);
        table.fieldByName(QStringLiteral("MuutosPvm")).setDate(now.date());
        table.fieldByName(QStringLiteral("muutosKlo")).setValue(now.time());
        table.post();
    }
};

WebShopMarkWriter::WebShopMarkWriter(data::Database& database)
    : m_data(std::make_unique<Data>(database)) {}

WebShopMarkWriter::~WebShopMarkWriter() = default;

void WebShopMarkWriter::mark(const QString& tableName, const QString& key, QChar letter,
                             const Report& report) {
    data::TtbTable& table = m_data->table;
    try {
        m_data->log(tableName, key, letter);
        if (!table.isOpen())
            company::openCompanyTable(table, QStringLiteral("WEBKLIITOS"), m_data->database);
        m_data->insert(tableName, key,
                       resultingLetter(m_data->pendingLetter(tableName, key), letter));
    } catch (const data::DataError& error) {
        if (table.state() == data::TableState::Insert)
            table.cancel();
        report(QStringLiteral("VIRHE: TryPost -> %1 ").arg(markErrorText(error)));
    }
}

QChar WebShopMarkWriter::resultingLetter(QChar pending, QChar letter) {
    return resultingWebShopLetter(pending, letter);
}

}  // namespace vatchange
