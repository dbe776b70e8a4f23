#include <QGridLayout>
#include <QHBoxLayout>

#include "vatchange/form/form_controls.h"

namespace vatchange {

namespace {

constexpr int kOrderRows = 3;
constexpr int kOptionRows = 5;  // of the options and the rounding next to them

// Sales and purchase orders are side by side with aligned rows.
void finishOrderGrid(QGridLayout* grid, const QWidget* edit) {
    levelRows(grid, kOrderRows, edit->sizeHint().height());
    grid->setColumnStretch(1, 1);
}

// A group of an order kind, with the title and hint of its coefficient.
QGroupBox* orderGroup(FormControls& controls, int tag, const QString& coefficient,
                      const QString& keepVat0, QWidget* parent) {
    auto* box = new QGroupBox(changeField(coefficient).caption, parent);
    QGridLayout* grid = groupGrid(box);
    framework::DecimalEdit* edit = coefficientEdit(controls, tag, coefficient, box);
    box->setToolTip(edit->toolTip());
    grid->addWidget(edit, 0, 0);
    grid->addWidget(keepVat0Box(controls, tag, keepVat0, box), 1, 0, 1, 2);
    return box;
}

}  // namespace

QGroupBox* buildSalesOrders(FormControls& controls, QWidget* parent) {
    QGroupBox* box = orderGroup(controls, kSalesOrderTag, QStringLiteral("MtKerroinEdit"),
                                QStringLiteral("SailytaAlv0_CheckBoxMT"), parent);
    auto* grid = static_cast<QGridLayout*>(box->layout());
    framework::DecimalEdit* edit = controls.coefficient(kSalesOrderTag);
    controls.deliveryLimit =
        named(new framework::DateEdit(box), QStringLiteral("MTToimPaivaRajaus"));
    controls.deliveryLimit->setFixedWidth(edit->maximumWidth());
    grid->addWidget(controls.deliveryLimit, 2, 0);
    grid->addWidget(captionLabel(controls.deliveryLimit, box), 2, 1);
    finishOrderGrid(grid, edit);
    return box;
}

QGroupBox* buildPurchaseOrders(FormControls& controls, QWidget* parent) {
    QGroupBox* box = orderGroup(controls, kPurchaseOrderTag, QStringLiteral("OtKerroinEdit"),
                                QStringLiteral("SailytaAlv0_CheckBoxOT"), parent);
    finishOrderGrid(static_cast<QGridLayout*>(box->layout()),
                    controls.coefficient(kPurchaseOrderTag));
    return box;
}

QGroupBox* buildOptions(FormControls& controls, QWidget* parent) {
    auto* box = new QGroupBox(QStringLiteral("Optiot"), parent);
    QGridLayout* grid = groupGrid(box);

    controls.products = namedCheckBox(QStringLiteral("Tuotteet"), box);
    controls.campaigns = namedCheckBox(QStringLiteral("Kampanjat"), box);
    controls.quantityDiscounts = namedCheckBox(QStringLiteral("MaaraAle"), box);
    controls.recurringInvoicing = namedCheckBox(QStringLiteral("cbVakioLaskutus"), box);
    controls.productCodes =
        namedCheckBox(QStringLiteral("chkCheckWebstoreCompliantProductIds"), box);
    auto* label = new QLabel(QStringLiteral("asiakashinnastot"), box);
    controls.customerPriceLists = namedCheckBox(QStringLiteral("asiakashinnasto"), box);
    controls.webShopPriceLists = namedCheckBox(QStringLiteral("WebKauppaAsHinCheckBox"), box);
    controls.salesOrders = namedCheckBox(QStringLiteral("MtCheckBox"), box);
    controls.purchaseOrders = namedCheckBox(QStringLiteral("OtCheckBox"), box);

    int row = 0;
    for (QWidget* left :
         {static_cast<QWidget*>(controls.products), static_cast<QWidget*>(controls.campaigns),
          static_cast<QWidget*>(controls.quantityDiscounts),
          static_cast<QWidget*>(controls.recurringInvoicing),
          static_cast<QWidget*>(controls.productCodes)})
        grid->addWidget(left, row++, 0);
    row = 0;
    for (QWidget* right :
         {static_cast<QWidget*>(label), static_cast<QWidget*>(controls.customerPriceLists),
          static_cast<QWidget*>(controls.webShopPriceLists),
          static_cast<QWidget*>(controls.salesOrders),
          static_cast<QWidget*>(controls.purchaseOrders)})
        grid->addWidget(right, row++, 1);
    levelRows(grid, kOptionRows, controls.products->sizeHint().height());
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return box;
}

QGroupBox* buildLogging(FormControls& controls, QWidget* parent) {
    auto* box = new QGroupBox(QStringLiteral("Loki ja verkkokauppa"), parent);
    QGridLayout* grid = groupGrid(box);
    // The group spans two columns of groups; its second half is aligned with the second one.
    grid->setHorizontalSpacing(kGutter + 2 * (kGroupMargin + 1));
    controls.productLog = namedCheckBox(QStringLiteral("Tuoteloki"), box);
    controls.leaveWebShop = namedCheckBox(QStringLiteral("Eiverkkokauppaa"), box);
    grid->addWidget(controls.productLog, 0, 0);
    grid->addWidget(controls.leaveWebShop, 0, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return box;
}

QWidget* buildRounding(FormControls& controls, QWidget* parent) {
    auto* both = new QWidget(parent);
    auto* row = new QHBoxLayout(both);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kGutter);
    controls.roundingRule = choiceGroup(QStringLiteral("PyoristysSaantoRadioGroup"), both);
    controls.roundingStep = choiceGroup(QStringLiteral("PyoristysRadioGroup"), both);
    for (framework::RadioGroup* group : {controls.roundingRule, controls.roundingStep}) {
        group->setRows(kOptionRows);
        group->layout()->setContentsMargins(kGroupMargin, kRowGap, kGroupMargin, kGutter);
        group->layout()->setSpacing(kRowGap);
        row->addWidget(group, 1);
    }
    return both;
}

}  // namespace vatchange
