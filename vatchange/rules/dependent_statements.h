#pragma once

#include <QString>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

// SQL statements for the dependent price tables. Queries return rows of products that `condition`
// selects.

/// Customer prices: fixed prices above 0 that are not based on the purchase price, of the selected
/// customer groups (of all if none is selected).
QString customerPriceQuery(const QString& condition, const ChangeDefinition& definition);
inline const QString kCustomerPriceUpdate = QStringLiteral(
    "UPDATE ASALE set hinta = :uusihinta, hintaalv0 = :uusihintaalv0, ostohinta = :uusiostohinta "
    "where tuote = :tuote and AsiakasNumero = :asiakasNumero and maara = :maara and AsikasTyyppi = "
    ":Asiakastyyppi");

/// Fixed-price campaigns that have not ended before the day of the change.
QString campaignQuery(const QString& condition, const ChangeDefinition& definition);
inline const QString kCampaignUpdate = QStringLiteral(
    "UPDATE kamppanja set myyntihinta = :uusihinta, ostohinta = :ostohinta where tuote = :tuote "
    "and rivinro = :rivi");

QString recurringInvoiceQuery(const QString& condition);
inline const QString kRecurringInvoiceUpdate = QStringLiteral(
    "UPDATE vakiolaskutus set ahinta = :uusihinta, Ostohinta = :uusiostohinta, yhteensa = "
    ":uusiyhteensa, muutospvm = curdate(), muutosaika = curtime() where id = :id");

/// Quantity discounts of selected products, see quantityDiscountsEndingFrom().
QString quantityDiscountQuery(const QString& condition, const ChangeDefinition& definition);
inline const QString kQuantityDiscountUpdate = QStringLiteral(
    "UPDATE maaraale set arvo = :uusiarvo, Ostohinta = :ostohinta where numero = :numero");

}  // namespace vatchange
