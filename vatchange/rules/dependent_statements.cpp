#include "vatchange/rules/dependent_statements.h"

#include <QStringList>

namespace vatchange {

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

QString campaignQuery(const QString& condition) {
    return QStringLiteral(
               "SELECT KAMPPANJA.Tuote, KAMPPANJA.Rivinro, KAMPPANJA.MyyntiHinta, "
               "KAMPPANJA.OstoHInta from KAMPPANJA, Tuote where (tuote = numero) and (prosentti = "
               "0) and (loppu='' or loppu>='") +
           kCampaignsEndingFrom.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral("' ) and ") +
           condition;
}

QString recurringInvoiceQuery(const QString& condition) {
    return QStringLiteral(
               "select id, asiakas, tuote, ahinta, yhteensa, ahintaalv0, ostohinta from "
               "vakiolaskutus,tuote where tuote=numero and  ") +
           condition + QStringLiteral(" order by asiakas, tuote");
}

QString quantityDiscountQuery(const QString& condition) {
    return QStringLiteral(
               "SELECT numero, nimi, arvo, ostohinta from maaraale where exists (select numero "
               "from tuote where tuote.maaraale = maaraale.numero and (loppu='' or "
               "loppu>='20240701' ) and ") +
           condition + QStringLiteral(" )");
}

}  // namespace vatchange
