#pragma once

#include <QString>

namespace vatchange {

/// The letter to store for a web shop change mark, given the latest pending one (null: none) and
/// the new one. A pending 'L' followed by 'M' stays 'L', because the row has yet to be added;
/// otherwise the new letter wins. 'M' or 'L' after a pending 'P' puts the row back on the web shop.
inline QChar resultingWebShopLetter(QChar pending, QChar letter) {
    return pending == u'L' && letter == u'M' ? pending : letter;
}

/// The web shop log's line about a requested mark.
inline QString webShopLogText(const QString& table, const QString& key, QChar letter) {
    return QStringLiteral(
               "WebkauppaMuutospyyntö:   Taulu: |%1|    Tyyppi: |%2|    Tunnus: |%3|    ")
        .arg(table, QString(letter), key);
}

}  // namespace vatchange
