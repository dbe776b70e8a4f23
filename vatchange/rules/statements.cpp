#include "vatchange/rules/statements.h"

#include <array>
#include <charconv>

#include "vatchange/rules/price_rules.h"
#include "vatchange/rules/selection.h"

namespace vatchange {

namespace {

/// Wraps an SQL expression in rounding by step and rule.
QString rounded(const QString& expression, RoundingStep step, RoundingRule rule) {
    const auto wrap = [&expression](const QString& before, const QString& after) {
        return before + expression + after;
    };
    const QString nearest = QStringLiteral("round( (");
    switch (step) {
        case RoundingStep::Tenth:
            return wrap(nearest, QStringLiteral("),3)"));
        case RoundingStep::One:
            return wrap(nearest, QStringLiteral("),2)"));
        case RoundingStep::Hundredth:
            return wrap(nearest, QStringLiteral("),4)"));
        case RoundingStep::Five:
        case RoundingStep::Ten:
            break;
    }
    const QString steps = step == RoundingStep::Five ? QStringLiteral("20") : QStringLiteral("10");
    const QString floor = QStringLiteral("FLOOR(((");
    switch (rule) {
        case RoundingRule::Up:
            return wrap(floor,
                        QStringLiteral(")* ") + steps + QStringLiteral(") + 0.9999) / ") + steps);
        case RoundingRule::Down:
            return wrap(floor, QStringLiteral(")* ") + steps + QStringLiteral(") ) / ") + steps);
        case RoundingRule::Normal:
            break;
    }
    return wrap(nearest, QStringLiteral(")*") + steps + QStringLiteral(")/") + steps + u')');
}

}  // namespace

QString dateLiteral(const QDate& date) {
    return u'\'' + date.toString(Qt::ISODate) + u'\'';
}

QString factorText(double factor) {
    std::array<char, 512>
        buffer;  // the longest fixed form of a double has 310 digits before the point
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), factor,
                                            std::chars_format::fixed);
    Q_ASSERT(error == std::errc());
    QString text = QString::fromLatin1(buffer.data(), end - buffer.data());
    if (!text.contains(u'.'))
        text += QStringLiteral(".0");
    return text;
}

QString productQuery(const QString& condition) {
    QString text = QStringLiteral(
        "SELECT NUMERO, HINTA, KAKSOISHINTA, HINTA3, HINTA4, HINTA5, HINTA6, HINTA7, HINTA8, "
        "HINTA9, LVV, ALV2, OSTOVERO, HRKPL, VERKKOKAUPPA, KESKIHINTA, VIIMOSTOHINTA, ANNOSHINTA "
        "FROM TUOTE");
    if (!condition.isEmpty())
        text += QStringLiteral(" WHERE ") + condition;
    return text;
}

QString limitQuery(const QString& condition) {
    return QStringLiteral(
               "SELECT NUMERO, MAARAALE, HINTA, KAKSOISHINTA, HINTA3, HINTA4, HINTA5, HINTA6, "
               "HINTA7, HINTA8, HINTA9 FROM TUOTE WHERE ") +
           condition;
}

QString levelParameter(int level) {
    return QStringLiteral("HINTA") + QString::number(level);
}

QString productUpdate(const ChangeDefinition& definition, const ClassFields& classes,
                      const QDate& today) {
    const PriceRules rules(definition);
    const QString target = QString::number(definition.targetClass);
    QStringList items;
    for (int level = 1; level <= kPriceLevels; ++level) {
        const auto index = static_cast<size_t>(level);
        if (rules.sources()[index - 1] > 0)
            items += kPriceColumns[index] + QStringLiteral(" = :") + levelParameter(level);
    }
    if (rules.changesPurchase())
        items += QStringLiteral("keskihinta =:OSTOHINTA,ANNOSHINTA = :ANNOSHINTA");
    if (rules.changesLastPurchase())
        items += QStringLiteral("viimostohinta =:VIIMOSTOHINTA");
    if (classes.sales)
        items += QStringLiteral("LVV=") + target;
    if (classes.second)
        items += QStringLiteral("ALV2=") + target;
    if (classes.purchase)
        items += QStringLiteral("OSTOVERO=") + target;
    items += QStringLiteral("MUUTETTUPVM = ") + dateLiteral(today) +
             QStringLiteral(", MUUTETTUTIME = CURTIME()");
    return QStringLiteral("UPDATE TUOTE SET ") + items.join(QStringLiteral(", ")) +
           QStringLiteral(" WHERE NUMERO = :TUOTENRO");
}

std::array<GroupUpdate, 3> groupUpdates(const ChangeDefinition& definition) {
    const QString range = groupRangeCondition(definition);
    const QString classes = QString::number(definition.sourceClass) + QStringLiteral(" -> ") +
                            QString::number(definition.targetClass);
    const auto statement = [&range](const QString& column) {
        return QStringLiteral("UPDATE TRYHMA SET ") + column +
               QStringLiteral(" = :UUSIVERO, MUUTOSPVM = CURDATE(), MUUTOSKLO = CURTIME() WHERE ") +
               column + QStringLiteral(" = :VANHAVERO") + range;
    };
    return {{
        {statement(QStringLiteral("VERO")), QStringLiteral("TRyhmä alv1"),
         QStringLiteral("Tryhmä alv1 ") + classes},
        {statement(QStringLiteral("ALV2")), QStringLiteral("TRyhmä alv2"),
         QStringLiteral("Tryhmä alv2 ") + classes},
        {statement(QStringLiteral("OSTOVERO")), QString(),
         QStringLiteral("Tryhmä ostoalv ") + classes},
    }};
}

QString storePriceAssignments(const ChangeDefinition& definition, double targetFactor) {
    const PriceRules rules(definition);
    const QString factor = factorText(targetFactor);
    QString assignments;
    for (int level = 1; level <= kPriceLevels; ++level) {
        const auto index = static_cast<size_t>(level - 1);
        if (rules.sources()[index] == 0)
            continue;
        const QString column = QStringLiteral("hinta") + QString::number(level);
        if (definition.levels[index].keepVat0) {
            const QString gross = u' ' + column + QStringLiteral("alv0 * ") + factor;
            assignments += QStringLiteral(", ") + column + QStringLiteral(" = ") +
                           rounded(gross, definition.roundingStep, definition.roundingRule);
        } else {
            assignments +=
                QStringLiteral(", ") + column + QStringLiteral("alv0 = ") + column + u'/' + factor;
        }
    }
    return assignments.mid(1);
}

QString storePriceUpdate(const QString& assignments) {
    return QStringLiteral("update myymalahinnat set ") + assignments +
           QStringLiteral(", muutettu =now() where tuote=:t");
}

QString storePriceQuery(std::initializer_list<int> classes) {
    QStringList terms;
    for (const int vatClass : classes)
        terms += QStringLiteral("lvv= ") + QString::number(vatClass);
    const QString term = terms.join(QStringLiteral(" or "));
    return QStringLiteral("select * from myymalahinnat, tuote where numero=tuote and ") +
           (terms.size() > 1 ? QString(u'(' + term + u')') : term) +
           QStringLiteral(" order by tuote");
}

QString labelUpdate(bool hasQuantityDiscountColumns) {
    const QString reset = QStringLiteral(
        "update hr set maara = :maara, tulpvm=null, tulaika=0,h1=0,h2=0, h3=0, h4=0, h5=0, h6=0, "
        "h7=0, h8=0, h9=0, voimassa=null, pantti=0, maaraale=''");
    if (hasQuantityDiscountColumns) {
        return reset + QStringLiteral(
                           ", maaraalehinta=0,maaraalekpl=0,MaaraAleHinPanttilla=0  where tuote = "
                           ":tuote and tyyppi=1");
    }
    return reset + QStringLiteral(" where tuote = :tuote and tyyppi=1");
}

QString leaveWebShopUpdate(const QDate& today) {
    return QStringLiteral("UPDATE TUOTE SET verkkokauppa = 0, MUUTETTUPVM = ") +
           dateLiteral(today) +
           QStringLiteral(", MUUTETTUTIME = CURTIME() WHERE numero = :numero;");
}

}  // namespace vatchange
