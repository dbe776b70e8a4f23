#include <QHBoxLayout>

#include "vatchange/form/form_controls.h"

namespace vatchange {

namespace {

constexpr int kTitleCharacters = 17;  // of a price level's name; longer names are shortened

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

// A table row as a widget: such rows share the extra height of a larger window.
QHBoxLayout* tableRow(QWidget* row) {
    auto* cells = new QHBoxLayout(row);
    cells->setContentsMargins(0, 0, 0, 0);
    cells->setSpacing(kColumnGap);
    return cells;
}

PriceLevelBox* levelRow(FormControls& controls, int level, const Columns& columns,
                        QWidget* parent) {
    const auto index = static_cast<std::size_t>(level - 1);
    auto* box = new PriceLevelBox(columns.name, parent);
    box->setObjectName(QStringLiteral("Hinta%1GroupBox").arg(level));
    controls.levelBoxes[index] = box;
    auto* row = static_cast<QHBoxLayout*>(box->layout());
    row->addWidget(coefficientEdit(controls, level, coefficientControl(level), box));

    auto* source = named(new framework::LookupCombo(box), sourceControl(level));
    source->setProperty(kTagProperty, level);
    source->setFixedWidth(columns.source);
    controls.sources[index] = source;
    row->addWidget(source);

    QCheckBox* keep = keepVat0Box(controls, level, keepVat0Control(level), box);
    keep->setFixedWidth(columns.keep);
    row->addWidget(keep);
    row->addStretch();
    return box;
}

QWidget* purchaseRow(FormControls& controls, int tag, const QString& coefficient,
                     const QString& keepVat0, const Columns& columns, QWidget* parent) {
    auto* row = new QWidget(parent);
    QHBoxLayout* cells = tableRow(row);
    framework::DecimalEdit* edit = coefficientEdit(controls, tag, coefficient, row);
    QLabel* label = captionLabel(edit, row);
    label->setFixedWidth(columns.name);
    cells->addWidget(label);
    cells->addWidget(edit);
    cells->addSpacing(columns.source + kColumnGap);
    cells->addWidget(keepVat0Box(controls, tag, keepVat0, row));
    cells->addStretch();
    return row;
}

QWidget* limitRow(FormControls& controls, const Columns& columns, QWidget* parent) {
    auto* row = new QWidget(parent);
    QHBoxLayout* cells = tableRow(row);
    framework::DecimalEdit* edit = decimalEdit(QStringLiteral("PriceChangeLimitEdit"), row);
    edit->setEmptyIsZero();
    edit->setFixedWidth(controls.coefficient(1)->maximumWidth());
    QLabel* label = captionLabel(edit, row);
    label->setFixedWidth(columns.name);
    controls.priceChangeLimit = edit;
    cells->addWidget(label);
    cells->addWidget(edit);
    cells->addStretch();
    return row;
}

// A safety limit: its label and edit. Empty: off.
template <typename Edit>
Edit* safetyLimit(Edit* edit, QGridLayout* grid, int row, int editWidth, QWidget* parent) {
    edit->setMayBeEmpty();
    edit->setPlaceholderText(QStringLiteral("ei rajaa"));
    edit->setFixedWidth(editWidth);
    auto* cells = new QHBoxLayout;
    cells->setSpacing(kColumnGap);
    QLabel* label = captionLabel(edit, parent);
    label->setText(changeField(edit->objectName()).label);
    cells->addWidget(label);
    cells->addStretch();
    cells->addWidget(edit);
    grid->addLayout(cells, row, 1);
    return edit;
}

QCheckBox* footChoice(const QString& objectName, QWidget* parent) {
    QCheckBox* box = namedCheckBox(objectName, parent);
    box->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    return box;
}

QWidget* headingRow(FormControls& controls, const Columns& columns, QWidget* parent) {
    const int coefficientWidth = controls.coefficient(1)->maximumWidth();
    auto* row = new QWidget(parent);
    QHBoxLayout* cells = tableRow(row);
    cells->addWidget(cell(QStringLiteral("Hintataso"), columns.name, row));
    cells->addWidget(cell(QStringLiteral("Kerroin"), coefficientWidth, row));
    cells->addWidget(cell(QStringLiteral("Hinnan lähde"), columns.source, row));
    controls.keepAll = new QCheckBox(QStringLiteral("Säilytä alv0 hinta"), row);
    controls.keepAll->setObjectName(QStringLiteral("SailytaAlv0Kaikki"));
    controls.keepAll->setAccessibleName(QStringLiteral("Säilytä alv0 hinta, kaikki hintatasot"));
    controls.keepAll->setToolTip(
        QStringLiteral("Säilytä alv0 hinta kaikilla hintatasoilla, tai ei millään"));
    controls.keepAll->setFixedWidth(columns.keep);
    cells->addWidget(controls.keepAll);
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
    grid->addWidget(headingRow(controls, columns, box), 0, 0, 1, 2);
    addWholeRow(purchaseRow(controls, kPurchaseTag, kPurchaseControl,
                            QStringLiteral("SailytaAlv0_CheckBoxOstohinta"), columns, box));
    addWholeRow(purchaseRow(controls, kLastPurchaseTag, kLastPurchaseControl,
                            QStringLiteral("SailytaAlv0_CheckBoxViimOstohinta"), columns, box));

    // Below the table: the limits, two choices and the help on shortcut keys.
    grid->addWidget(limitRow(controls, columns, box), row, 0);
    const int limitWidth = box->fontMetrics().horizontalAdvance(QStringLiteral("0000000000")) + 12;
    controls.mostPercent =
        safetyLimit(decimalEdit(kMostPercentControl, box), grid, row++, limitWidth, box);
    controls.keepPricelistVat0 =
        footChoice(QStringLiteral("DoNotUpdateCustomerPricelistVAT0"), box);
    grid->addWidget(controls.keepPricelistVat0, row, 0);
    controls.mostProducts =
        safetyLimit(numberEdit(kMostProductsControl, box), grid, row++, limitWidth, box);
    const int foot = row;
    controls.shelfLabels = footChoice(QStringLiteral("VieHr"), box);
    grid->addWidget(controls.shelfLabels, row++, 0);
    auto* keys = new QLabel(QStringLiteral("Pikanäppäimet:\n"
                                           "Alt - 1 asettaa kertoimeksi 1.255/1.24,\n"
                                           "Alt - 2 asettaa kertoimeksi 1.255/1.14"),
                            box);
    keys->setObjectName(QStringLiteral("PikanappaimetLabel"));
    ++row;
    grid->addWidget(keys, foot, 1, row - foot, 1, Qt::AlignLeft | Qt::AlignVCenter);

    for (int r = 1; r < row; ++r)
        grid->setRowStretch(r, 1);
    grid->setColumnStretch(1, 1);
    return box;
}

}  // namespace vatchange
