#include "vatchange/rules/selection.h"

#include <QStringList>
#include <limits>

#include "vatchange/definition/ignore_list.h"

namespace vatchange {

namespace {

void addRangeTerms(QStringList& terms, const QString& column, const GroupRestriction& restriction) {
    const qint64 first = restriction.first;
    const qint64 last = restriction.last;
    if (first == 0 && last == 0)
        return;
    if (first != last && first != 0 && last != 0) {
        terms += u'(' + column + QStringLiteral(" >= ") + QString::number(first) + u')';
        terms += u'(' + column + QStringLiteral(" <= ") + QString::number(last) + u')';
        return;
    }
    // a single bound selects that group, not a half-open range
    terms +=
        u'(' + column + QStringLiteral(" = ") + QString::number(first != 0 ? first : last) + u')';
}

void addTerms(QStringList& terms, const QString& column, const GroupRestriction& restriction) {
    if (!restriction.on)
        return;
    addRangeTerms(terms, column, restriction);
    QStringList ignored;
    for (const qint64 number : parseIgnoreList(restriction.ignored).numbers)
        ignored += QString::number(number);
    if (!ignored.isEmpty()) {
        terms += QStringLiteral("( ") + column + QStringLiteral(" not in ( ") + ignored.join(u',') +
                 QStringLiteral(" ))");
    }
}

QString condition(const ChangeDefinition& definition, std::initializer_list<int> classes) {
    QStringList terms;
    addTerms(terms, QStringLiteral("AliRyhma"), definition.subGroup);
    addTerms(terms, QStringLiteral("Ryhma"), definition.productGroup);
    addTerms(terms, QStringLiteral("PaaRyhma"), definition.mainGroup);
    QStringList classTerms;
    for (const int vatClass : classes) {
        const QString number = QString::number(vatClass);
        classTerms += QStringLiteral("lvv = ") + number + QStringLiteral(" OR alv2 = ") + number +
                      QStringLiteral(" OR ostovero = ") + number;
    }
    terms += QStringLiteral("( ") + classTerms.join(QStringLiteral(" OR ")) + u')';
    return terms.join(QStringLiteral(" AND "));
}

}  // namespace

QString selectionCondition(const ChangeDefinition& definition) {
    return condition(definition, {definition.sourceClass});
}

QString selectionWithConverted(const ChangeDefinition& definition) {
    return condition(definition, {definition.sourceClass, definition.targetClass});
}

QString groupRangeCondition(const ChangeDefinition& definition) {
    QString condition;
    if (definition.productGroup.first != 0)
        condition +=
            QStringLiteral(" and nro >= ") + QString::number(definition.productGroup.first);
    if (definition.productGroup.last != 0)
        condition += QStringLiteral(" and nro <= ") + QString::number(definition.productGroup.last);
    return condition;
}

ProductSelection::Terms::Terms(const GroupRestriction& restriction)
    : first(std::numeric_limits<qint64>::min()), last(std::numeric_limits<qint64>::max()) {
    if (!restriction.on)
        return;
    if (restriction.first != 0 || restriction.last != 0) {
        // as in addRangeTerms(): a single bound selects that group
        first = restriction.first != 0 ? restriction.first : restriction.last;
        last = restriction.last != 0 ? restriction.last : restriction.first;
    }
    ignored = parseIgnoreList(restriction.ignored).numbers;
}

bool ProductSelection::Terms::admit(qint64 group) const {
    return group >= first && group <= last && !ignored.contains(group);
}

ProductSelection::ProductSelection(const ChangeDefinition& definition)
    : m_source(definition.sourceClass),
      m_subGroup(definition.subGroup),
      m_productGroup(definition.productGroup),
      m_mainGroup(definition.mainGroup),
      m_rangeFirst(definition.productGroup.first),
      m_rangeLast(definition.productGroup.last) {}

bool ProductSelection::carriesSource(const SelectionFields& product) const {
    return product.salesClass == m_source || product.secondClass == m_source ||
           product.purchaseClass == m_source;
}

bool ProductSelection::inGroups(const SelectionFields& product) const {
    return m_subGroup.admit(product.subGroup) && m_productGroup.admit(product.productGroup) &&
           m_mainGroup.admit(product.mainGroup);
}

bool ProductSelection::inGroupRange(qint64 productGroup) const {
    return (m_rangeFirst == 0 || productGroup >= m_rangeFirst) &&
           (m_rangeLast == 0 || productGroup <= m_rangeLast);
}

}  // namespace vatchange
