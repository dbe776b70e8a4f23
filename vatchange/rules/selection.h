#pragma once

#include <QList>
#include <QString>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// SQL condition on TUOTE that selects the products to change: range and ignore terms of each
/// enabled group kind, then the VAT class term. Contains only integers, no user text.
QString selectionCondition(const ChangeDefinition& definition);

/// The same with the target class beside the source class: also what a run has converted.
QString selectionWithConverted(const ChangeDefinition& definition);

/// Product group range, appended to the conditions of the TRYHMA updates; applies even if the
/// product group restriction is off.
QString groupRangeCondition(const ChangeDefinition& definition);

/// Fields of a product that the selection looks at.
struct SelectionFields {
    qint64 subGroup = 0;       ///< AliRyhma
    qint64 productGroup = 0;   ///< Ryhma
    qint64 mainGroup = 0;      ///< PaaRyhma
    qint64 salesClass = 0;     ///< lvv
    qint64 secondClass = 0;    ///< alv2
    qint64 purchaseClass = 0;  ///< ostovero
};

/// The conditions above, evaluated on a record instead of by SQL.
class ProductSelection {
  public:
    explicit ProductSelection(const ChangeDefinition& definition);

    /// The VAT class term.
    bool carriesSource(const SelectionFields& product) const;
    /// The terms of the group restrictions.
    bool inGroups(const SelectionFields& product) const;
    bool selects(const SelectionFields& product) const {
        return carriesSource(product) && inGroups(product);
    }
    /// groupRangeCondition() for a product group.
    bool inGroupRange(qint64 productGroup) const;

  private:
    struct Terms {
        explicit Terms(const GroupRestriction& restriction);
        bool admit(qint64 group) const;

        qint64 first;  ///< the range includes both
        qint64 last;
        QList<qint64> ignored;
    };

    qint64 m_source;
    Terms m_subGroup;
    Terms m_productGroup;
    Terms m_mainGroup;
    qint64 m_rangeFirst;
    qint64 m_rangeLast;
};

}  // namespace vatchange
