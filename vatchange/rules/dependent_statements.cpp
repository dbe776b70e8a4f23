#include "vatchange/rules/dependent_statements.h"

#include <QStringList>

#include "vatchange/rules/change_day.h"

namespace vatchange {

namespace {

/// The condition that a period has not ended before a day; the column holds dates as texts.
QString endsFrom(const QDate& day) {
    return QStringLiteral("(loppu='' or loppu>='") + day.toString(QStringLiteral("yyyyMMdd")) +
           QStringLiteral("' ) and ");
}

}  // namespace

QString customerPriceQuery(const QString& condition, const ChangeDefinition& definition) {
    QString text =
        QStringLiteral(
            "SELECT AsiakasNumero, tuote, asale.hinta, asale.hintaalv0, maara, AsikasTyyppi, "
            "Alkaa, Loppuu, Huom, Tyyppi, Maara, KplAle, OstoHinta, OstohintaLahtoinen, "
            "vainkortilla from ASALE, TUOTE where (tuote = numero) and (tyyppi = 1) and "
            "(asale.prosentteina = 0) and (asale.hinta > 0) and (OstohintaLahtoinen = 0) and ") +
        condition;
    if (definition.customerGroups.empty())
        return text;

    QStringList numbers;
    for (const int group : definition.customerGroups)
        numbers += QString::number(group);
    const QString groups = numbers.join(u',');
    const QString groupRows = QStringLiteral("(Asikastyyppi = 1)");
    const QString types = definition.webShopCustomerPriceLists
                              ? QStringLiteral("( ") + groupRows +
                                    QStringLiteral(" or (Asikastyyppi = 2)") + QStringLiteral(" )")
                              : groupRows;
    text += QStringLiteral(
                "\nand (((Asikastyyppi = 0) and (AsiakasNumero IN (SELECT ASIAKAS.ASIAKAS FROM "
                "ASIAKAS, ASRYHMA WHERE (ASIAKAS.RYHMA = ASRYHMA.NRO) AND (ASRYHMA.NRO IN ( ") +
            groups + QStringLiteral(" )))))");
    text += QStringLiteral(" or ( ") + types + QStringLiteral(" and (Asiakasnumero IN ( ") +
            groups + QStringLiteral(" ))))");
    return text;
}

QString campaignQuery(const QString& condition, const ChangeDefinition& definition) {
    return QStringLiteral(
               "SELECT KAMPPANJA.Tuote, KAMPPANJA.Rivinro, KAMPPANJA.MyyntiHinta, "
               "KAMPPANJA.OstoHInta from KAMPPANJA, Tuote where (tuote = numero) and (prosentti = "
               "0) and ") +
           endsFrom(campaignsEndingFrom(definition)) + condition;
}

QString recurringInvoiceQuery(const QString& condition) {
    return QStringLiteral(
               "select id, asiakas, tuote, ahinta, yhteensa, ahintaalv0, ostohinta from "
               "vakiolaskutus,tuote where tuote=numero and  ") +
           condition + QStringLiteral(" order by asiakas, tuote");
}

QString quantityDiscountQuery(const QString& condition, const ChangeDefinition& definition) {
    return QStringLiteral(
               "SELECT numero, nimi, arvo, ostohinta from maaraale where exists (select numero "
               "from tuote where tuote.maaraale = maaraale.numero and ") +
           endsFrom(quantityDiscountsEndingFrom(definition)) + condition + QStringLiteral(" )");
}

}  // namespace vatchange
