#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <array>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

// The statements of the products part of a run. Their texts are fixed; numbers in them come from
// integers and rates alone, everything else is a parameter.

/// A date as the database's literal: 'yyyy-mm-dd' with its quotes.
QString dateLiteral(const QDate& date);
/// A VAT factor in a statement: the shortest text that reads back to the double, always with a
/// decimal point (1.0 for a whole one), never with an exponent.
QString factorText(double factor);

/// The selected products with everything that their conversion reads.
QString productQuery(const QString& condition);

/// Which VAT class fields of a product hold the source class.
struct ClassFields {
    bool sales = false;     ///< LVV
    bool second = false;    ///< ALV2
    bool purchase = false;  ///< OSTOVERO
    bool any() const { return sales || second || purchase; }
};

/// Parameter of a price level's new price: HINTA1..HINTA9.
QString levelParameter(int level);
/// The UPDATE of one product. Parameters: HINTAn of each level with a source; OSTOHINTA and
/// ANNOSHINTA; VIIMOSTOHINTA; TUOTENRO.
QString productUpdate(const ChangeDefinition& definition, const ClassFields& classes,
                      const QDate& today);

/// One of the three statements on product groups; parameters VANHAVERO and UUSIVERO.
struct GroupUpdate {
    QString statement;
    QString status;  ///< empty: the status line stays
    QString log;
};
std::array<GroupUpdate, 3> groupUpdates(const ChangeDefinition& definition);

inline const QString kStoreTableQuery =
    QStringLiteral("select * from x$file where xf$name='MYYMALAHINNAT'");
/// The assignments of the store price update, without the leading comma but with the blank that
/// follows it; empty when no level has a source. The 5 and 10 cent forms of normal rounding are no
/// valid SQL: the database refuses them when the statement is run, and no store price changes.
QString storePriceAssignments(const ChangeDefinition& definition, double targetFactor);
/// The update of one product's store rows; parameter t.
QString storePriceUpdate(const QString& assignments);
/// The store rows whose product carries the source class.
QString storePriceQuery(int sourceClass);

inline const QString kLabelColumnsQuery = QStringLiteral("select top 0 * from hr");
inline const QString kLabelInsert =
    QStringLiteral("insert into hr (tyyppi,tuote,maara) values (1,:tuote,:maara)");
/// Resets a product's shelf label row; parameters maara and tuote. Older label tables lack the
/// quantity discount columns.
QString labelUpdate(bool hasQuantityDiscountColumns);

inline const QString kWebShopProductsQuery =
    QStringLiteral("SELECT numero, nimi FROM TUOTE WHERE verkkokauppa = 1;");
/// Takes a product off the web shop; parameter numero.
QString leaveWebShopUpdate(const QDate& today);

inline const QString kVatClassQuery = QStringLiteral("SELECT luokka, Prosentti FROM ALVKANTA");

}  // namespace vatchange
