#pragma once

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <array>

#include "framework/ui/choice_controls.h"
#include "framework/ui/value_edits.h"
#include "vatchange/definition/definition_fields.h"

namespace vatchange {

/// Tags of the coefficient and keep-VAT0 tables, from 1: price levels 1..9, purchase price, last
/// purchase price, sales orders, purchase orders.
inline constexpr int kCoefficients = 13;
inline constexpr int kPurchaseTag = 10;
inline constexpr int kLastPurchaseTag = 11;
inline constexpr int kSalesOrderTag = 12;
inline constexpr int kPurchaseOrderTag = 13;

// Measures shared by all groups of the form, in logical pixels.
inline constexpr int kGutter = 8;        ///< between groups, and around them
inline constexpr int kGroupMargin = 10;  ///< inside a group's frame, left and right
inline constexpr int kColumnGap = 8;
inline constexpr int kRowGap = 3;
/// Beyond this the form no longer grows with its window: rows too far apart are hard to follow.
inline constexpr QSize kLargestContent(1560, 800);

/// The property that holds a control's tag.
inline constexpr char kTagProperty[] = "tag";

/// One row of a price level with the level's name as its title.
class PriceLevelBox : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle)
  public:
    PriceLevelBox(int titleWidth, QWidget* parent);
    const QString& title() const { return m_title; }
    /// A title too long for the row is shortened; the tool tip has it in full.
    void setTitle(const QString& title);

  private:
    QString m_title;
    QLabel* m_label;
};

/// Controls of the restriction by one kind of group.
struct RestrictionControls {
    QCheckBox* on = nullptr;
    QWidget* box = nullptr;  ///< holds the rest; enabled while `on` is checked
    framework::NumberEdit* first = nullptr;
    framework::NumberEdit* last = nullptr;
    QPushButton* search = nullptr;
    framework::TextEdit* ignored = nullptr;
    QLabel* names = nullptr;  ///< of the groups at the ends of the range; hidden without
};

/// The controls of the change form.
struct FormControls {
    RestrictionControls subGroup;
    RestrictionControls productGroup;
    RestrictionControls mainGroup;
    QCheckBox* productRange = nullptr;
    QWidget* productRangeBox = nullptr;
    framework::TextEdit* productFirst = nullptr;
    framework::TextEdit* productLast = nullptr;
    QPushButton* productSearch = nullptr;
    framework::CheckList* customerGroups = nullptr;
    QLabel* productCount = nullptr;  ///< of the products that the restrictions select

    framework::NumberEdit* sourceClass = nullptr;
    framework::NumberEdit* targetClass = nullptr;
    framework::DateEdit* changeDay = nullptr;
    QLabel* changeDayCaption = nullptr;
    QLabel* sourceCaption = nullptr;
    QLabel* targetCaption = nullptr;
    QLabel* sourceRate = nullptr;
    QLabel* targetRate = nullptr;
    QLabel* unclassifiedNote = nullptr;

    std::array<PriceLevelBox*, kPriceLevels> levelBoxes{};
    std::array<framework::LookupCombo*, kPriceLevels> sources{};
    std::array<framework::DecimalEdit*, kCoefficients> coefficients{};
    std::array<QCheckBox*, kCoefficients> keepVat0{};
    QCheckBox* keepAll = nullptr;  ///< of all price levels; not part of the definition
    framework::DecimalEdit* priceChangeLimit = nullptr;
    framework::NumberEdit* mostProducts = nullptr;
    framework::DecimalEdit* mostPercent = nullptr;
    QCheckBox* keepPricelistVat0 = nullptr;
    QCheckBox* shelfLabels = nullptr;
    framework::DateEdit* deliveryLimit = nullptr;

    QCheckBox* customerPriceLists = nullptr;
    QCheckBox* webShopPriceLists = nullptr;
    QCheckBox* campaigns = nullptr;
    QCheckBox* quantityDiscounts = nullptr;
    QCheckBox* salesOrders = nullptr;
    QCheckBox* purchaseOrders = nullptr;
    QCheckBox* products = nullptr;
    QCheckBox* recurringInvoicing = nullptr;
    QCheckBox* productCodes = nullptr;

    framework::RadioGroup* roundingRule = nullptr;
    framework::RadioGroup* roundingStep = nullptr;
    QCheckBox* productLog = nullptr;
    QCheckBox* leaveWebShop = nullptr;

    framework::DecimalEdit* coefficient(int tag) const {
        // cppcheck-suppress CastIntegerToAddressAtReturn ; it takes arrays of pointers for numbers
        return coefficients[static_cast<std::size_t>(tag - 1)];
    }
    QCheckBox* keep(int tag) const {
        // cppcheck-suppress CastIntegerToAddressAtReturn
        return keepVat0[static_cast<std::size_t>(tag - 1)];
    }
    framework::LookupCombo* source(int tag) const {
        // cppcheck-suppress CastIntegerToAddressAtReturn
        return sources[static_cast<std::size_t>(tag - 1)];
    }
};

// Each builds and names a group of controls and stores them in `controls`.
QGroupBox* buildRestrictions(FormControls& controls, QWidget* parent);
QGroupBox* buildVatClasses(FormControls& controls, QWidget* parent);
QGroupBox* buildPrices(FormControls& controls, QWidget* parent);
QGroupBox* buildSalesOrders(FormControls& controls, QWidget* parent);
QGroupBox* buildPurchaseOrders(FormControls& controls, QWidget* parent);
QGroupBox* buildOptions(FormControls& controls, QWidget* parent);
QGroupBox* buildLogging(FormControls& controls, QWidget* parent);
/// Both choices of rounding, side by side.
QWidget* buildRounding(FormControls& controls, QWidget* parent);

/// The groups of the form and the grid that holds them.
struct FormGroups {
    QGroupBox* restrictions = nullptr;
    QGroupBox* vatClasses = nullptr;
    QGroupBox* prices = nullptr;
    QGroupBox* options = nullptr;
    QWidget* rounding = nullptr;
    QGroupBox* salesOrders = nullptr;
    QGroupBox* purchaseOrders = nullptr;
    QGroupBox* logging = nullptr;
    QGridLayout* grid = nullptr;
};
/// Puts the groups into the grid, all but the VAT classes of a narrow form: in three columns, or in
/// one column of the whole width with two groups side by side where both are narrow.
void arrangeGroups(const FormGroups& groups, bool narrow);
/// Lays the VAT classes out in two rows above the note, or everything in one row.
void arrangeVatClasses(const FormControls& controls, QGroupBox* box, bool oneRow);

/// Marks a text as wrong: white on red, in every colour scheme; or as usual.
void markWrong(QLabel* label, bool wrong);

/// Creates the grid of a group, with the shared margins and gaps.
QGridLayout* groupGrid(QGroupBox* box);
/// Makes the first `count` rows equally high, at least `height`, at any size.
void levelRows(QGridLayout* grid, int count, int height);

/// Sets object name, hint and accessible name of a field's control.
void nameControl(QWidget& control, const ChangeField& field);
template <typename Control>
Control* named(Control* control, const QString& objectName) {
    nameControl(*control, changeField(objectName));
    return control;
}
/// A check box of a definition with its caption.
QCheckBox* namedCheckBox(const QString& objectName, QWidget* parent);
/// A whole number's edit.
framework::NumberEdit* numberEdit(const QString& objectName, QWidget* parent);
/// A decimal number's edit.
framework::DecimalEdit* decimalEdit(const QString& objectName, QWidget* parent);
/// A choice with its items.
framework::RadioGroup* choiceGroup(const QString& objectName, QWidget* parent);
/// A coefficient edit of the coefficient table.
framework::DecimalEdit* coefficientEdit(FormControls& controls, int tag, const QString& objectName,
                                        QWidget* parent);
/// A keep-VAT0 check box of the table.
QCheckBox* keepVat0Box(FormControls& controls, int tag, const QString& objectName, QWidget* parent);
/// The label of a field's control, with its caption.
QLabel* captionLabel(QWidget* control, QWidget* parent);

}  // namespace vatchange
