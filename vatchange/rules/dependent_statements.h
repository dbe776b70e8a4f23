#pragma once

#include <QDate>
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

/// The change date; campaigns that end earlier are skipped.
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

/// Quantity discounts of selected products that end in July 2024 or later: two months before the
/// change date, unlike campaigns.
QString quantityDiscountQuery(const QString& condition);
inline const QString kQuantityDiscountUpdate = QStringLiteral(
    "UPDATE maaraale set arvo = :uusiarvo, Ostohinta = :ostohinta where numero = :numero");

}  // namespace vatchange
