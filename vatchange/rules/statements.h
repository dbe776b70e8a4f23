#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <array>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

// SQL statements for products. The texts are fixed; only integers and VAT factors are inserted, all
// other values are parameters.

/// A date literal, 'yyyy-mm-dd' with quotes.
QString dateLiteral(const QDate& date);
/// A VAT factor as an SQL literal: the shortest text that reads back as the same double, always
/// with a decimal point (1.0), never with an exponent.
QString factorText(double factor);

/// Selects products with all columns that the conversion reads.
QString productQuery(const QString& condition);

/// Selects products with what the percent limit looks at.
QString limitQuery(const QString& condition);

/// VAT class fields of a product that hold the source class.
struct ClassFields {
    bool sales = false;     ///< LVV
    bool second = false;    ///< ALV2
    bool purchase = false;  ///< OSTOVERO
    bool any() const { return sales || second || purchase; }
};

/// Parameter name of a price level's new price: HINTA1..HINTA9.
QString levelParameter(int level);
/// UPDATE of one product. Parameters: HINTAn for each level with a source; OSTOHINTA and
/// ANNOSHINTA, VIIMOSTOHINTA where their coefficient is not 1; TUOTENRO.
QString productUpdate(const ChangeDefinition& definition, const ClassFields& classes,
                      const QDate& today);

/// UPDATE of one class field of the product groups; parameters VANHAVERO and UUSIVERO.
struct GroupUpdate {
    QString statement;
    QString status;  ///< empty: leaves the status line
    QString log;
};
std::array<GroupUpdate, 3> groupUpdates(const ChangeDefinition& definition);

inline const QString kStoreTableQuery =
    QStringLiteral("select * from x$file where xf$name='MYYMALAHINNAT'");
/// Assignments of the store price update, with a leading blank; empty if no level has a source.
/// Normal rounding to 5 or 10 cents gives invalid SQL: the database rejects the statement and no
/// store price changes.
QString storePriceAssignments(const ChangeDefinition& definition, double targetFactor);
/// UPDATE of a product's store rows; parameter t.
QString storePriceUpdate(const QString& assignments);
/// Selects the store rows of products with one of these classes in LVV.
QString storePriceQuery(std::initializer_list<int> classes);

inline const QString kLabelColumnsQuery = QStringLiteral("select top 0 * from hr");
inline const QString kLabelInsert =
    QStringLiteral("insert into hr (tyyppi,tuote,maara) values (1,:tuote,:maara)");
/// Resets a product's shelf label rows; parameters maara and tuote. Older label tables lack the
/// quantity discount columns.
QString labelUpdate(bool hasQuantityDiscountColumns);

inline const QString kWebShopProductsQuery =
    QStringLiteral("SELECT numero, nimi FROM TUOTE WHERE verkkokauppa = 1;");
/// Removes a product from the web shop; parameter numero.
QString leaveWebShopUpdate(const QDate& today);

inline const QString kVatClassQuery = QStringLiteral("SELECT luokka, Prosentti FROM ALVKANTA");

}  // namespace vatchange
