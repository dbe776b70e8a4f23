#pragma once

#include <QDate>
#include <QString>
#include <array>
#include <optional>
#include <vector>

namespace vatchange {

inline constexpr int kPriceLevels = 9;

/// A restriction by one kind of group.
struct GroupRestriction {
    bool on = false;
    qint64 first = 0;  ///< 0: not given
    qint64 last = 0;
    QString ignored;  ///< comma-separated group numbers to leave out

    bool operator==(const GroupRestriction&) const = default;
};

/// Price source of an unchanged level.
inline const QString kNoSource = QStringLiteral("0");

/// What happens to one price level.
struct PriceLevelChange {
    double coefficient = 1.0;
    QString source = kNoSource;  ///< price column the new price is computed from
    bool keepVat0 = false;

    bool operator==(const PriceLevelChange&) const = default;
};

enum class RoundingRule { Normal = 0, Up = 1, Down = 2 };  ///< item indexes of the form
enum class RoundingStep { Tenth = 0, One = 1, Five = 2, Ten = 3, Hundredth = 4 };  ///< in cents

/// The highest VAT class that an order row can hold: its field is a signed byte.
inline constexpr int kHighestOrderClass = 127;

/// A change definition: all values of the change form's controls. The initial values are the
/// defaults.
struct ChangeDefinition {
    GroupRestriction subGroup;
    GroupRestriction productGroup;
    GroupRestriction mainGroup;
    bool productRangeOn = false;  ///< kept, not used by the selection
    QString productFirst;
    QString productLast;
    std::vector<int> customerGroups;  ///< checked group numbers; empty: all

    int sourceClass = 0;
    int targetClass = 0;

    std::array<PriceLevelChange, kPriceLevels> levels;
    double purchaseCoefficient = 1.0;
    bool keepVat0Purchase = false;
    double lastPurchaseCoefficient = 1.0;
    bool keepVat0LastPurchase = false;
    double priceChangeLimit = 0.0;
    bool keepCustomerPricelistVat0 = false;  ///< DoNotUpdateCustomerPricelistVAT0
    bool writeShelfLabels = true;            ///< VieHr

    double salesOrderCoefficient = 1.0;
    bool salesOrderFromVat0 = false;
    QDate salesOrderDeliveryLimit;  ///< invalid: no limit
    double purchaseOrderCoefficient = 1.0;
    bool purchaseOrderFromVat0 = false;

    bool productLog = false;    ///< Tuoteloki
    bool leaveWebShop = false;  ///< Eiverkkokauppaa

    bool customerPriceLists = false;         ///< asiakashinnasto
    bool webShopCustomerPriceLists = false;  ///< WebKauppaAsHinCheckBox
    bool campaigns = false;
    bool quantityDiscounts = false;
    bool salesOrders = false;
    bool purchaseOrders = false;
    bool products = true;  ///< Tuotteet
    bool recurringInvoicing = false;
    bool checkProductCodes = false;

    std::optional<qint64> mostProducts;  ///< TurvarajaTuotteet: more refuse the definition
    std::optional<double> mostPercent;   ///< TurvarajaProsentti: products beyond are passed over
    QDate changeDay;  ///< Muutospaiva; invalid: the day of September 2024, see rules/change_day.h

    RoundingRule roundingRule = RoundingRule::Normal;
    RoundingStep roundingStep = RoundingStep::One;

    bool operator==(const ChangeDefinition&) const = default;

    /// Whether any table that uses the coefficient of level 1 is converted.
    bool changesDependents() const {
        return customerPriceLists || campaigns || recurringInvoicing || quantityDiscounts;
    }
};

/// The price columns of TUOTE by level; index 0 is "" (no change).
extern const std::array<QString, kPriceLevels + 1> kPriceColumns;

/// True when the trimmed text names one of the nine price columns.
bool isPriceColumn(const QString& source);

}  // namespace vatchange
