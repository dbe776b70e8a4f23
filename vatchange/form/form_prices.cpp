#include <QHBoxLayout>
#include <QVBoxLayout>

#include "vatchange/form/form_controls.h"

namespace vatchange {

namespace {

constexpr int kTitleCharacters = 17;  // of a price level's name; a longer one is shortened
constexpr int kLimitDecimals = 2;
constexpr int kFootRows = 3;

// Widths that all rows of the table share; the nine levels are widgets of their own.
struct Columns {
    explicit Columns(const QWidget* parent)
        : name(qMax(kTitleCharacters * parent->fontMetrics().averageCharWidth(),
                    parent->fontMetrics().horizontalAdvance(QStringLiteral("Hinnanmuutosraja ")))),
          source(parent->fontMetrics().horizontalAdvance(QStringLiteral("Ei muutosta")) + 76),
          keep(parent->fontMetrics().horizontalAdvance(QStringLiteral("Säilytä alv0 hinta")) + 28) {
    }
    int name;
    int source;
    int keep;
};

QLabel* cell(const QString& text, int width, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFixedWidth(width);
    return label;
}

QHBoxLayout* tableRow() {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kColumnGap);
    return row;
}

PriceLevelBox* levelRow(FormControls& controls, int level, const Columns& columns,
                        QWidget* parent) {
    const QString number = QString::number(level);
    const auto index = static_cast<std::size_t>(level - 1);
    auto* box = new PriceLevelBox(columns.name, parent);
    box->setObjectName(QStringLiteral("Hinta%1GroupBox").arg(number));
    controls.levelBoxes[index] = box;
    auto* row = static_cast<QHBoxLayout*>(box->layout());
    row->addWidget(coefficientEdit(controls, level, QStringLiteral("Hinta%1Edit").arg(number),
                                   QStringLiteral("Hinta %1, kerroin").arg(number), box));

    auto* source = new framework::LookupCombo(box);
    source->setObjectName(QStringLiteral("HintaLahde") + number);
    source->setAccessibleName(QStringLiteral("Hinta %1, hinnan lähde").arg(number));
    source->setProperty(kTagProperty, level);
    source->setFixedWidth(columns.source);
    controls.sources[index] = source;
    row->addWidget(source);

    framework::CheckBox* keep =
        keepVat0Box(controls, level, QStringLiteral("SailytaAlv0_CheckBox") + number, {},
                    QStringLiteral("Tuotetiedoissa säilytetään alv0 hinta"), box);
    keep->setAccessibleName(QStringLiteral("Hinta %1, säilytä alv0 hinta").arg(number));
    keep->setFixedWidth(columns.keep);
    row->addWidget(keep);
    row->addStretch();
    return box;
}

void purchaseRow(QVBoxLayout* column, FormControls& controls, int tag, const QString& caption,
                 const QString& stem, const Columns& columns, QWidget* parent) {
    QHBoxLayout* row = tableRow();
    QLabel* label = cell(caption, columns.name, parent);
    framework::DecimalEdit* edit =
        coefficientEdit(controls, tag, stem + QStringLiteral("Edit"), caption, parent);
    label->setBuddy(edit);
    row->addWidget(label);
    row->addWidget(edit);
    row->addSpacing(columns.source + kColumnGap);
    framework::CheckBox* keep =
        keepVat0Box(controls, tag, QStringLiteral("SailytaAlv0_CheckBox") + stem,
                    QStringLiteral("Säilytä alv0 hinta"), {}, parent);
    keep->setAccessibleName(caption + QStringLiteral(", säilytä alv0 hinta"));
    row->addWidget(keep);
    row->addStretch();
    column->addLayout(row, 1);
}

framework::DecimalEdit* limitEdit(int width, QWidget* parent) {
    auto* edit = new framework::DecimalEdit(kLimitDecimals, 0.0, parent);
    edit->setObjectName(QStringLiteral("PriceChangeLimitEdit"));
    edit->setAccessibleName(QStringLiteral("Hinnanmuutosraja"));
    edit->setToolTip(
        QStringLiteral("Muuttaa tuotteen verolliset hinnat vain hintatasoilta, joiden hinta on "
                       "vähintään hinnanmuutosraja."));
    edit->setFixedWidth(width);
    return edit;
}

// Below the table: the limit and two choices, and beside them what the shortcut keys do.
QLayout* priceFoot(FormControls& controls, const Columns& columns, QWidget* parent) {
    QLabel* label = cell(QStringLiteral("Hinnanmuutosraja"), columns.name, parent);
    controls.priceChangeLimit = limitEdit(controls.coefficient(1)->maximumWidth(), parent);
    label->setBuddy(controls.priceChangeLimit);
    controls.keepPricelistVat0 = namedCheckBox(
        QStringLiteral("DoNotUpdateCustomerPricelistVAT0"),
        QStringLiteral("Älä päivitä asiakashinnaston alv0 hintaa"),
        QStringLiteral("Asiakashinnaston alv0 hintaa ei päivitetä vaikka verollinen hinta "
                       "muuttuisi."),
        parent);
    controls.shelfLabels =
        namedCheckBox(QStringLiteral("VieHr"), QStringLiteral("Vie hyllynreunaetiketteihin"),
                      QStringLiteral("Muutettu tuote kirjoitetaan HR etiketteihin."), parent);
    controls.shelfLabels->setChecked(true);
    auto* keys = new QLabel(QStringLiteral("Pikanäppäimet:\n"
                                           "Alt - 1 asettaa kertoimeksi 1.255/1.24,\n"
                                           "Alt - 2 asettaa kertoimeksi 1.255/1.14"),
                            parent);
    keys->setObjectName(QStringLiteral("PikanappaimetLabel"));

    QHBoxLayout* limit = tableRow();
    limit->addWidget(label);
    limit->addWidget(controls.priceChangeLimit);
    limit->addStretch();
    auto* rows = new QVBoxLayout;
    rows->setSpacing(kRowGap);
    rows->addLayout(limit, 1);
    rows->addWidget(controls.keepPricelistVat0, 1);
    rows->addWidget(controls.shelfLabels, 1);
    auto* foot = new QHBoxLayout;
    foot->setSpacing(2 * kColumnGap);
    foot->addLayout(rows);
    foot->addWidget(keys, 1, Qt::AlignLeft | Qt::AlignVCenter);
    return foot;
}

}  // namespace

QGroupBox* buildPrices(FormControls& controls, QWidget* parent) {
    auto* box = new QGroupBox(
        QStringLiteral("Hintojen muutoskertoimet. Hinnan lähde määrää muutetaanko hintaa vai ei "),
        parent);
    const Columns columns(box);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(kGroupMargin, kRowGap, kGroupMargin, kGutter);
    column->setSpacing(kRowGap);

    QHBoxLayout* headings = tableRow();
    headings->addWidget(cell(QStringLiteral("Hintataso"), columns.name, box));
    auto* coefficientHeading = new QLabel(QStringLiteral("Kerroin"), box);
    headings->addWidget(coefficientHeading);
    headings->addWidget(cell(QStringLiteral("Hinnan lähde"), columns.source, box));
    headings->addWidget(cell(QStringLiteral("Säilytä alv0 hinta"), columns.keep, box));
    headings->addStretch();
    column->addLayout(headings);

    for (int level = 1; level <= kPriceLevels; ++level)
        column->addWidget(levelRow(controls, level, columns, box), 1);
    coefficientHeading->setFixedWidth(controls.coefficient(1)->maximumWidth());
    purchaseRow(column, controls, kPurchaseTag, QStringLiteral("Ostohinta"),
                QStringLiteral("Ostohinta"), columns, box);
    purchaseRow(column, controls, kLastPurchaseTag, QStringLiteral("Viim. ostohinta"),
                QStringLiteral("ViimOstohinta"), columns, box);
    column->addLayout(priceFoot(controls, columns, box), kFootRows);
    return box;
}

}  // namespace vatchange
