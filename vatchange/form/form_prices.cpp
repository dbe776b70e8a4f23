#include <QHBoxLayout>

#include "vatchange/form/form_controls.h"

namespace vatchange {

namespace {

constexpr int kTitleCharacters = 17;  // of a price level's name; a longer one is shortened
constexpr int kLimitDecimals = 2;

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

// A row of the table as a widget: rows that are widgets share what room a larger window gives.
QHBoxLayout* tableRow(QWidget* row) {
    auto* cells = new QHBoxLayout(row);
    cells->setContentsMargins(0, 0, 0, 0);
    cells->setSpacing(kColumnGap);
    return cells;
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

QWidget* purchaseRow(FormControls& controls, int tag, const QString& caption, const QString& stem,
                     const Columns& columns, QWidget* parent) {
    auto* row = new QWidget(parent);
    QHBoxLayout* cells = tableRow(row);
    QLabel* label = cell(caption, columns.name, row);
    framework::DecimalEdit* edit =
        coefficientEdit(controls, tag, stem + QStringLiteral("Edit"), caption, row);
    label->setBuddy(edit);
    cells->addWidget(label);
    cells->addWidget(edit);
    cells->addSpacing(columns.source + kColumnGap);
    framework::CheckBox* keep =
        keepVat0Box(controls, tag, QStringLiteral("SailytaAlv0_CheckBox") + stem,
                    QStringLiteral("Säilytä alv0 hinta"), {}, row);
    keep->setAccessibleName(caption + QStringLiteral(", säilytä alv0 hinta"));
    cells->addWidget(keep);
    cells->addStretch();
    return row;
}

QWidget* limitRow(FormControls& controls, const Columns& columns, QWidget* parent) {
    auto* row = new QWidget(parent);
    QHBoxLayout* cells = tableRow(row);
    QLabel* label = cell(QStringLiteral("Hinnanmuutosraja"), columns.name, row);
    auto* edit = new framework::DecimalEdit(kLimitDecimals, 0.0, row);
    edit->setEmptyIsZero();
    edit->setObjectName(QStringLiteral("PriceChangeLimitEdit"));
    edit->setAccessibleName(label->text());
    edit->setToolTip(
        QStringLiteral("Muuttaa tuotteen verolliset hinnat vain hintatasoilta, joiden hinta on "
                       "vähintään hinnanmuutosraja."));
    edit->setFixedWidth(controls.coefficient(1)->maximumWidth());
    label->setBuddy(edit);
    controls.priceChangeLimit = edit;
    cells->addWidget(label);
    cells->addWidget(edit);
    cells->addStretch();
    return row;
}

framework::CheckBox* footChoice(const QString& objectName, const QString& caption,
                                const QString& hint, QWidget* parent) {
    framework::CheckBox* box = namedCheckBox(objectName, caption, hint, parent);
    box->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    return box;
}

QWidget* headingRow(const Columns& columns, int coefficientWidth, QWidget* parent) {
    auto* row = new QWidget(parent);
    QHBoxLayout* cells = tableRow(row);
    cells->addWidget(cell(QStringLiteral("Hintataso"), columns.name, row));
    cells->addWidget(cell(QStringLiteral("Kerroin"), coefficientWidth, row));
    cells->addWidget(cell(QStringLiteral("Hinnan lähde"), columns.source, row));
    cells->addWidget(cell(QStringLiteral("Säilytä alv0 hinta"), columns.keep, row));
    cells->addStretch();
    return row;
}

}  // namespace

QGroupBox* buildPrices(FormControls& controls, QWidget* parent) {
    auto* box = new QGroupBox(
        QStringLiteral("Hintojen muutoskertoimet. Hinnan lähde määrää muutetaanko hintaa vai ei "),
        parent);
    const Columns columns(box);
    QGridLayout* grid = groupGrid(box);
    grid->setHorizontalSpacing(2 * kColumnGap);
    int row = 1;
    const auto addWholeRow = [&](QWidget* widget) { grid->addWidget(widget, row++, 0, 1, 2); };
    for (int level = 1; level <= kPriceLevels; ++level)
        addWholeRow(levelRow(controls, level, columns, box));
    grid->addWidget(headingRow(columns, controls.coefficient(1)->maximumWidth(), box), 0, 0, 1, 2);
    addWholeRow(purchaseRow(controls, kPurchaseTag, QStringLiteral("Ostohinta"),
                            QStringLiteral("Ostohinta"), columns, box));
    addWholeRow(purchaseRow(controls, kLastPurchaseTag, QStringLiteral("Viim. ostohinta"),
                            QStringLiteral("ViimOstohinta"), columns, box));

    // Below the table: the limit and two choices, and beside them what the shortcut keys do.
    const int foot = row;
    grid->addWidget(limitRow(controls, columns, box), row++, 0);
    controls.keepPricelistVat0 = footChoice(
        QStringLiteral("DoNotUpdateCustomerPricelistVAT0"),
        QStringLiteral("Älä päivitä asiakashinnaston alv0 hintaa"),
        QStringLiteral("Asiakashinnaston alv0 hintaa ei päivitetä vaikka verollinen hinta "
                       "muuttuisi."),
        box);
    grid->addWidget(controls.keepPricelistVat0, row++, 0);
    controls.shelfLabels =
        footChoice(QStringLiteral("VieHr"), QStringLiteral("Vie hyllynreunaetiketteihin"),
                   QStringLiteral("Muutettu tuote kirjoitetaan HR etiketteihin."), box);
    controls.shelfLabels->setChecked(true);
    grid->addWidget(controls.shelfLabels, row++, 0);
    auto* keys = new QLabel(QStringLiteral("Pikanäppäimet:\n"
                                           "Alt - 1 asettaa kertoimeksi 1.255/1.24,\n"
                                           "Alt - 2 asettaa kertoimeksi 1.255/1.14"),
                            box);
    keys->setObjectName(QStringLiteral("PikanappaimetLabel"));
    grid->addWidget(keys, foot, 1, row - foot, 1, Qt::AlignLeft | Qt::AlignVCenter);

    for (int r = 1; r < row; ++r)
        grid->setRowStretch(r, 1);
    grid->setColumnStretch(1, 1);
    return box;
}

}  // namespace vatchange
