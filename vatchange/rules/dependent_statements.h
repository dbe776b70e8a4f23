#pragma once

#include <QDate>
#include <QString>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

// The statements of the dependent price tables. `condition` is the product selection; every query
// takes only rows whose product it selects.

/// Customer price lists: fixed prices above 0 that do not follow the purchase price, of the checked
/// customer groups (all rows when none is checked).
QString customerPriceQuery(const QString& condition, const ChangeDefinition& definition);
inline const QString kCustomerPriceUpdate = QStringLiteral(
    "UPDATE ASALE set hinta = :uusihinta, hintaalv0 = :uusihintaalv0, ostohinta = :uusiostohinta "
    "where tuote = :tuote and AsiakasNumero = :asiakasNumero and maara = :maara and AsikasTyyppi = "
    ":Asiakastyyppi");

/// Campaigns that end before this day, the change date, are left alone.
inline const QDate kCampaignsEndingFrom(2024, 9, 1);
/// Fixed-price campaigns that have not ended before the change date.
QString campaignQuery(const QString& condition);
inline const QString kCampaignUpdate = QStringLiteral(
    "UPDATE kamppanja set myyntihinta = :uusihinta, ostohinta = :ostohinta where tuote = :tuote "
    "and rivinro = :rivi");

QString recurringInvoiceQuery(const QString& condition);
inline const QString kRecurringInvoiceUpdate = QStringLiteral(
    "UPDATE vakiolaskutus set ahinta = :uusihinta, Ostohinta = :uusiostohinta, yhteensa = "
    ":uusiyhteensa, muutospvm = curdate(), muutosaika = curtime() where id = :id");

/// Quantity discounts of a selected product that have not ended before July 2024: two months before
/// the change, unlike campaigns.
QString quantityDiscountQuery(const QString& condition);
inline const QString kQuantityDiscountUpdate = QStringLiteral(
    "UPDATE maaraale set arvo = :uusiarvo, Ostohinta = :ostohinta where numero = :numero");

}  // namespace vatchange
