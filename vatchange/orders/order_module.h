#pragma once

#include <QDate>
#include <QString>
#include <functional>
#include <memory>

#include "data/engine.h"
#include "data/record/tb_table.h"
#include "data/sql/uni_query.h"

namespace vatchange {

/// What the order conversions need from outside: a log, a sign of life, the rates.
struct OrderPorts {
    std::function<void(const QString& line)> log;             ///< change log
    std::function<void(const QString& text)> showMessage;     ///< NaytaViesti of the form
    std::function<void(const QString& text)> status;          ///< status line
    std::function<void(qint64 done, qint64 total)> progress;  ///< orders
    std::function<void()> rowChanged;                         ///< a row was posted; may be empty
    std::function<void(const QString& text)> trace;           ///< debugger output; may be empty
    std::function<bool()> cancelled;                          ///< asked between two rows
    std::function<double(int vatClass)> ratePercent;          ///< 0 for a class that ALVKANTA lacks
};

struct SalesOrderArguments {
    int priceDecimals = 2;
    bool keepVat0 = false;
    int sourceClass = 0;
    double purchaseCoefficient = 1.0;  ///< not above 0: 1.0
    double salesCoefficient = 1.0;     ///< not above 0: 1.0
    int targetClass = 0;
    QDate deliveryLimit;  ///< invalid: no limit
};

struct PurchaseOrderArguments {
    int priceDecimals = 2;
    bool keepVat0 = false;
    int sourceClass = 0;
    double purchaseCoefficient = 1.0;
    int targetClass = 0;
};

/// Converts all open sales orders, then shows "Myyntitilaukset konvertoitu.". Database errors end
/// the conversion and reach the caller; rows posted so far stay.
void AlvMuutosMyyntitilauksiin(data::Database& database, const SalesOrderArguments& arguments,
                               const OrderPorts& ports);

/// The same for open purchase orders; "Ostotilaukset konvertoitu.".
void AlvMuutosOstotilauksiin(data::Database& database, const PurchaseOrderArguments& arguments,
                             const OrderPorts& ports);

}  // namespace vatchange
