#include <QGridLayout>

#include "framework/ui/dialogs.h"
#include "vatchange/form/form_controls.h"

namespace vatchange {

namespace {

constexpr int kOrderRows = 3;
constexpr int kOptionRows = 5;  // of the options and of the rounding beside them

// Sales and purchase orders stand side by side with their rows level.
void finishOrderGrid(QGridLayout* grid, const QWidget* edit) {
    levelRows(grid, kOrderRows, edit->sizeHint().height());
    grid->setColumnStretch(1, 1);
}

}  // namespace

QGroupBox* buildSalesOrders(FormControls& controls, QWidget* parent) {
    const QString hint = framework::withLineBreaks(
        QStringLiteral("Uuden verollisen ahinnan laskemiseen käytettävä kerroin.\r\n"
                       "Jos verollinen ahinta ei muutu, jätä kertoimeksi 1."));
    auto* box = new QGroupBox(QStringLiteral("Myyntitilauskerroin"), parent);
    box->setToolTip(hint);
    QGridLayout* grid = groupGrid(box);
    framework::DecimalEdit* edit =
        coefficientEdit(controls, kSalesOrderTag, QStringLiteral("MtKerroinEdit"),
                        QStringLiteral("Myyntitilauskerroin"), box);
    edit->setToolTip(hint);
    framework::CheckBox* keep =
        keepVat0Box(controls, kSalesOrderTag, QStringLiteral("SailytaAlv0_CheckBoxMT"),
                    QStringLiteral("Laske verollinen alv0:sta"),
                    QStringLiteral("Uusi verollinen a-hinta lasketaan kertoimen sijaan alv0 "
                                   "a-hinnasta."),
                    box);
    keep->setAccessibleName(QStringLiteral("Myyntitilaus, laske verollinen alv0:sta"));
    controls.deliveryLimit = new framework::DateEdit(box);
    controls.deliveryLimit->setObjectName(QStringLiteral("MTToimPaivaRajaus"));
    controls.deliveryLimit->setAccessibleName(QStringLiteral("Toimituspäivä alkaen"));
    controls.deliveryLimit->setToolTip(
        QStringLiteral("Ajetaan vaan ne joiden toimituspäivä on tämä tai tuoreempi"));
    controls.deliveryLimit->setFixedWidth(edit->maximumWidth());
    auto* label = new QLabel(QStringLiteral("Toimituspäivä alkaen"), box);
    label->setBuddy(controls.deliveryLimit);
    grid->addWidget(edit, 0, 0);
    grid->addWidget(keep, 1, 0, 1, 2);
    grid->addWidget(controls.deliveryLimit, 2, 0);
    grid->addWidget(label, 2, 1);
    finishOrderGrid(grid, edit);
    return box;
}

QGroupBox* buildPurchaseOrders(FormControls& controls, QWidget* parent) {
    const QString hint = framework::withLineBreaks(
        QStringLiteral("Uuden verollisen a-ostohinnan laskemiseen käytettävä kerroin.\r\n"
                       "Jos verollinen a-ostohinta ei muutu, jätä kertoimeksi 1."));
    auto* box = new QGroupBox(QStringLiteral("Ostotilauskerroin"), parent);
    box->setToolTip(hint);
    QGridLayout* grid = groupGrid(box);
    framework::DecimalEdit* edit =
        coefficientEdit(controls, kPurchaseOrderTag, QStringLiteral("OtKerroinEdit"),
                        QStringLiteral("Ostotilauskerroin"), box);
    edit->setToolTip(hint);
    framework::CheckBox* keep =
        keepVat0Box(controls, kPurchaseOrderTag, QStringLiteral("SailytaAlv0_CheckBoxOT"),
                    QStringLiteral("Laske verollinen alv0:sta"),
                    QStringLiteral("Uusi verollinen a-ostohinta lasketaan kertoimen sijaan alv0 "
                                   "a-ostohinnasta."),
                    box);
    keep->setAccessibleName(QStringLiteral("Ostotilaus, laske verollinen alv0:sta"));
    grid->addWidget(edit, 0, 0);
    grid->addWidget(keep, 1, 0, 1, 2);
    finishOrderGrid(grid, edit);
    return box;
}

QGroupBox* buildOptions(FormControls& controls, QWidget* parent) {
    auto* box = new QGroupBox(QStringLiteral("Optiot"), parent);
    QGridLayout* grid = groupGrid(box);

    controls.products =
        namedCheckBox(QStringLiteral("Tuotteet"), QStringLiteral("Tuotteet ja ryhmät"),
                      QStringLiteral("Ajetaan tuotehinnat, veroluokat ja ryhmien veroluokat"), box);
    controls.products->setChecked(true);
    controls.campaigns = namedCheckBox(QStringLiteral("Kampanjat"), QStringLiteral("Kampanja"),
                                       QStringLiteral("Ajetaan kampanjat kertoimella"), box);
    controls.quantityDiscounts =
        namedCheckBox(QStringLiteral("MaaraAle"), QStringLiteral("Määräale"),
                      QStringLiteral("Ajetaan määräalennukset kertoimella"), box);
    controls.recurringInvoicing =
        namedCheckBox(QStringLiteral("cbVakioLaskutus"), QStringLiteral("Toistuvaislaskutus"),
                      QStringLiteral("Päivitetään vakio/kausilaskutus myös"), box);
    controls.productCodes = namedCheckBox(
        QStringLiteral("chkCheckWebstoreCompliantProductIds"), QStringLiteral("T.kooditarkastus"),
        QStringLiteral("Tarkasta verkkokauppatuotteiden tuotekoodit kiellettyjen merkkien "
                       "varalta.\r\nTarkastus tehdään KAIKILLE kannan tuotteille, ei pelkästään "
                       "taksavaiheessa mukana oleville."),
        box);
    auto* label = new QLabel(QStringLiteral("asiakashinnastot"), box);
    controls.customerPriceLists =
        namedCheckBox(QStringLiteral("asiakashinnasto"), QStringLiteral("Asiakashinnasto"),
                      QStringLiteral("Ajetaan nettoasiakashinnastot hinta1:n kertoimella"), box);
    controls.webShopPriceLists = namedCheckBox(
        QStringLiteral("WebKauppaAsHinCheckBox"), QStringLiteral("Verkkokaupan"),
        QStringLiteral("Ajetaan verkkokaupan asiakashinnastot hinta1:n kertoimella"), box);
    controls.salesOrders =
        namedCheckBox(QStringLiteral("MtCheckBox"), QStringLiteral("Myyntitilaus"), {}, box);
    controls.purchaseOrders =
        namedCheckBox(QStringLiteral("OtCheckBox"), QStringLiteral("Ostotilaus"), {}, box);

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
    // The group is as wide as two others: its second half begins where the second one's does.
    grid->setHorizontalSpacing(kGutter + 2 * (kGroupMargin + 1));
    controls.productLog = namedCheckBox(
        QStringLiteral("Tuoteloki"), QStringLiteral("Loki tuotekohtaisista muutoksista"),
        QStringLiteral("Kirjoittaa tuotemuutoksista yksityiskohtaisen lokin"), box);
    controls.leaveWebShop = namedCheckBox(
        QStringLiteral("Eiverkkokauppaa"), QStringLiteral("Älä päivitä verkkokauppaa"),
        QStringLiteral("Verkkokaupan muutoksia ei vielä tehdä. Tarpeen silloin jos ajo ajetaan "
                       "ennakkoon"),
        box);
    grid->addWidget(controls.productLog, 0, 0);
    grid->addWidget(controls.leaveWebShop, 0, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return box;
}

void buildRounding(FormControls& controls, QWidget* parent) {
    controls.roundingRule = new framework::RadioGroup(
        QStringLiteral("Pyöristyssääntö"),
        {QStringLiteral("Normaali"), QStringLiteral("Aina ylös"), QStringLiteral("Aina alas")},
        static_cast<int>(RoundingRule::Normal), parent);
    controls.roundingRule->setObjectName(QStringLiteral("PyoristysSaantoRadioGroup"));
    controls.roundingStep =
        new framework::RadioGroup(QStringLiteral("Pyöristys (senttiä)"),
                                  {QStringLiteral("0,1 "), QStringLiteral("1"), QStringLiteral("5"),
                                   QStringLiteral("10"), QStringLiteral("0,01")},
                                  static_cast<int>(RoundingStep::One), parent);
    controls.roundingStep->setObjectName(QStringLiteral("PyoristysRadioGroup"));
    for (framework::RadioGroup* group : {controls.roundingRule, controls.roundingStep}) {
        group->setRows(kOptionRows);
        group->layout()->setContentsMargins(kGroupMargin, kRowGap, kGroupMargin, kGutter);
        group->layout()->setSpacing(kRowGap);
    }
}

}  // namespace vatchange
