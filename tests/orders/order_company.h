#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <map>
#include <memory>
#include <vector>

#include "data/engine.h"
#include "data/record/tb_table.h"
#include "vatchange/orders/order_module.h"

namespace test {

/// Field values by name; fields not named are empty.
using Fields = std::map<QString, data::Value>;

/// A company database of its own in a temporary folder, with what the order module reads, and a
/// recorder of what the module tells the outside.
class OrderCompany {
  public:
    OrderCompany();

    data::Database& database() { return *m_database; }
    /// A second connection, as another program would have it.
    std::unique_ptr<data::Database> otherProgram() const;

    void add(const QString& table, const Fields& fields);
    /// A sales row 10.00 / 8.00 x 4, purchase 5.00 / 4.00, of class 3 with all to deliver; `more`
    /// overrides.
    void addSalesRow(int order, int row, const Fields& more = {});
    /// A purchase row 10.00 / 9.00 x 4 of class 3, all to arrive.
    void addPurchaseRow(int order, int row, const Fields& more = {});

    double number(const QString& table, const data::KeyValues& key, const QString& field);
    /// The bytes of a record of key 0.
    QByteArray bytes(const QString& table, const data::KeyValues& key);
    /// The bytes of all records in the order of key 0.
    std::vector<QByteArray> records(const QString& table);

    /// Rates: class 2 14 %, 3 24 %, 4 25.5 %, 5 25 %.
    vatchange::OrderPorts ports();

    QStringList log;
    QStringList messages;
    QStringList statuses;
    QStringList traces;
    std::vector<std::pair<qint64, qint64>> progress;
    int cancelAfter = -1;  ///< how often cancelled() says no; -1: always

  private:
    QTemporaryDir m_folder;
    std::unique_ptr<data::Database> m_database;
};

}  // namespace test
