#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <variant>
#include <vector>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// Access to one value of a definition, from a pointer to a member or a callable that works on both
/// a constant and a changeable definition.
template <typename T>
class DefinitionMember {
  public:
    template <typename Access>
    DefinitionMember(Access access) : m_read(access), m_write(access) {}

    const T& of(const ChangeDefinition& definition) const { return m_read(definition); }
    T& of(ChangeDefinition& definition) const { return m_write(definition); }

  private:
    std::function<const T&(const ChangeDefinition&)> m_read;
    std::function<T&(ChangeDefinition&)> m_write;
};

using AnyDefinitionMember =
    std::variant<DefinitionMember<bool>, DefinitionMember<int>, DefinitionMember<qint64>,
                 DefinitionMember<double>, DefinitionMember<QString>, DefinitionMember<QDate>,
                 DefinitionMember<std::vector<int>>, DefinitionMember<RoundingRule>,
                 DefinitionMember<RoundingStep>, DefinitionMember<std::optional<qint64>>,
                 DefinitionMember<std::optional<double>>>;

/// The texts that a field may have in the file, and in brackets the type of its member.
enum class FieldKind {
    Check,        ///< (bool) "0" or "1"
    Class,        ///< (int) VAT class: digits; required
    Number,       ///< (qint64) digits; empty is 0
    Text,         ///< (QString) anything
    IgnoreList,   ///< (QString) anything; only digits and commas can be typed
    Coefficient,  ///< (double) any finite number
    Amount,       ///< (double) a number between the field's bounds
    Source,       ///< (QString) key of a price source; an unknown one is not an error
    Date,         ///< (QDate) yyyy-mm-dd or empty
    MostCount,    ///< (std::optional<qint64>) digits; empty: off
    MostAmount,   ///< (std::optional<double>) a number between the field's bounds; empty: off
    Groups,       ///< (std::vector<int>) numbers separated by commas
    Choice        ///< (enumeration) index of one of the items
};

/// One value of a change definition, with its names in file, form and report. The default is that
/// of the member in ChangeDefinition.
struct ChangeField {
    QString control;  ///< object name in the form, key in the file
    FieldKind kind;
    AnyDefinitionMember member;
    QString caption = {};         ///< what the form shows; empty where a heading above it does
    QString accessibleName = {};  ///< name for a screen reader and in messages
    QString hint = {};            ///< lines end with "\r\n", as in the system's texts
    QString label = {};           ///< in the report
    int digits = 0;          ///< most digits of a number, most decimals typed of a decimal number
    double highest = 0;      ///< of an amount; the lowest is 0
    QStringList items = {};  ///< of a choice
    bool optional = false;   ///< a definition without the key is complete; an empty value is off
};

/// All values of a definition, in the order in which the form shows them. The coefficients follow
/// the order of the coefficient table: levels 1..9, purchase price, last purchase price, sales
/// orders, purchase orders.
const std::vector<ChangeField>& changeFields();

/// Returns the field of a control. Precondition: the table has it.
const ChangeField& changeField(const QString& control);

// Names of the controls that exist once per price level (1..9).
QString coefficientControl(int level);
QString sourceControl(int level);
QString keepVat0Control(int level);

// Names of the controls used by the load and run rules.
inline const QString kSourceClassControl = QStringLiteral("LahdeAlvLuokkaEdit");
inline const QString kTargetClassControl = QStringLiteral("KohdeAlvLuokkaEdit");
inline const QString kCustomerGroupsControl = QStringLiteral("AsRyhmaCheckList");
inline const QString kMostProductsControl = QStringLiteral("TurvarajaTuotteet");
inline const QString kMostPercentControl = QStringLiteral("TurvarajaProsentti");
inline const QString kChangeDayControl = QStringLiteral("Muutospaiva");
inline const QString kPurchaseControl = QStringLiteral("OstohintaEdit");
inline const QString kLastPurchaseControl = QStringLiteral("ViimOstohintaEdit");

}  // namespace vatchange
