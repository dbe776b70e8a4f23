#include <QGridLayout>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "vatchange/form/form_controls.h"

namespace vatchange {

namespace {

constexpr int kVisibleGroups = 24;  // characters of a customer group's name

// Widths shared by all rows, so that columns line up although each row is a separate widget.
struct Columns {
    explicit Columns(const QWidget* parent)
        : check(parent->fontMetrics().horizontalAdvance(QStringLiteral("Tuotenro (ei käytössä)")) +
                34),
          number(parent->fontMetrics().horizontalAdvance(QStringLiteral("00000000000")) + 14),
          button(parent->fontMetrics().horizontalAdvance(QStringLiteral("Tuotehaku")) + 26),
          ignored(parent->fontMetrics().horizontalAdvance(QStringLiteral("Ulosrajattavat ryhmät")) +
                  16) {}
    int check;
    int number;  ///< of a range's ends: eleven digits, or most of a product number
    int button;
    int ignored;
};

QLabel* heading(const QString& text, int width, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    if (width > 0)
        label->setFixedWidth(width);
    return label;
}

// A row that grows with its window, controls centred vertically.
QHBoxLayout* flatRow(QWidget* box) {
    box->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kColumnGap);
    return row;
}

QPushButton* searchButton(const QString& caption, const QString& accessibleName, QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setAccessibleName(accessibleName);
    button->setAutoDefault(true);  // Enter presses it
    return button;
}

RestrictionControls restriction(const QString& stem, const Columns& columns, QWidget* parent) {
    RestrictionControls controls;
    controls.on = namedCheckBox(stem + QStringLiteral("CheckBox"), parent);
    controls.on->setFixedWidth(columns.check);

    controls.box = new QWidget(parent);
    controls.box->setObjectName(stem + QStringLiteral("RajausGroupBox"));
    controls.box->setEnabled(false);
    controls.first = numberEdit(stem + QStringLiteral("AlkuEdit"), controls.box);
    controls.first->setFixedWidth(columns.number);
    controls.last = numberEdit(stem + QStringLiteral("LoppuEdit"), controls.box);
    controls.last->setFixedWidth(columns.number);
    const QString kind = controls.on->text().chopped(1);  // without "#"
    controls.search =
        searchButton(QStringLiteral("Haku"), kind + QStringLiteral(", haku"), controls.box);
    controls.search->setObjectName(stem + QStringLiteral("HakuButton"));
    controls.search->setFixedWidth(columns.button);
    const QString ignored = QStringLiteral("edt") + stem + QStringLiteral("Ignore");
    controls.ignored = named(new framework::TextEdit(controls.box), ignored);
    controls.ignored->setPlaceholderText(changeField(ignored).caption);
    controls.ignored->setMinimumWidth(columns.ignored);
    controls.ignored->setValidator(new QRegularExpressionValidator(
        QRegularExpression(QStringLiteral("[0-9,]*")), controls.ignored));

    controls.names = new QLabel(parent);
    controls.names->setObjectName(stem + QStringLiteral("NimiLabel"));
    controls.names->setTextFormat(Qt::PlainText);
    controls.names->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    controls.names->hide();

    QHBoxLayout* row = flatRow(controls.box);
    row->addWidget(controls.first);
    row->addWidget(controls.last);
    row->addWidget(controls.search);
    row->addWidget(controls.ignored, 1);
    return controls;
}

void productRange(FormControls& controls, const Columns& columns, QWidget* parent) {
    controls.productRange = namedCheckBox(QStringLiteral("TuotenroCheckBox"), parent);
    controls.productRange->setFixedWidth(columns.check);
    controls.productRangeBox = new QWidget(parent);
    controls.productRangeBox->setObjectName(QStringLiteral("TuotenroRajausGroupBox"));
    controls.productRangeBox->setEnabled(false);
    QHBoxLayout* row = flatRow(controls.productRangeBox);
    const auto edit = [&](const QString& objectName) {
        auto* text = named(new framework::TextEdit(controls.productRangeBox), objectName);
        text->setDropReplaces(true);
        text->setFixedWidth(columns.number);
        row->addWidget(text);
        return text;
    };
    controls.productFirst = edit(QStringLiteral("TuotenroAlkuEdit"));
    controls.productLast = edit(QStringLiteral("TuotenroLoppuEdit"));
    controls.productSearch = searchButton(QStringLiteral("Tuotehaku"), QStringLiteral("Tuotehaku"),
                                          controls.productRangeBox);
    controls.productSearch->setObjectName(QStringLiteral("TuotehakuButton"));
    controls.productSearch->setFixedWidth(columns.button);
    row->addWidget(controls.productSearch);
    row->addStretch();
}

}  // namespace

QGroupBox* buildRestrictions(FormControls& controls, QWidget* parent) {
    auto* box = new QGroupBox(QStringLiteral("Rajaukset (0 tai tyhjä = ei mukana)"), parent);
    const Columns columns(box);
    QGridLayout* grid = groupGrid(box);

    auto* headings = new QHBoxLayout;
    headings->setSpacing(kColumnGap);
    headings->addWidget(heading(QStringLiteral("Alku"), columns.number, box));
    headings->addWidget(heading(QStringLiteral("Loppu"), columns.number, box));
    headings->addStretch();
    controls.productCount = new QLabel(box);
    controls.productCount->setObjectName(QStringLiteral("TuotemaaraLabel"));
    controls.productCount->setToolTip(
        QStringLiteral("Tuotteet, joita määrittely muuttaa rajausten ja luokan mukaan"));
    headings->addWidget(controls.productCount);
    grid->addLayout(headings, 0, 1);

    controls.subGroup = restriction(QStringLiteral("Aliryhma"), columns, box);
    controls.productGroup = restriction(QStringLiteral("Tuoteryhma"), columns, box);
    controls.mainGroup = restriction(QStringLiteral("Paaryhma"), columns, box);
    productRange(controls, columns, box);
    int row = 1;
    for (const RestrictionControls* kind :
         {&controls.subGroup, &controls.productGroup, &controls.mainGroup}) {
        grid->addWidget(kind->on, row, 0);
        grid->addWidget(kind->box, row, 1);
        grid->setRowStretch(row++, 1);
        grid->addWidget(kind->names, row++, 1);
    }
    grid->addWidget(controls.productRange, row, 0);
    grid->addWidget(controls.productRangeBox, row, 1);
    grid->setRowStretch(row++, 1);

    controls.customerGroups = named(new framework::CheckList(box), kCustomerGroupsControl);
    controls.customerGroups->setMinimumWidth(kVisibleGroups *
                                             box->fontMetrics().averageCharWidth());
    // As high as the four rows next to it.
    controls.customerGroups->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    QLabel* label = captionLabel(controls.customerGroups, box);
    grid->setColumnMinimumWidth(2, kColumnGap);
    grid->addWidget(label, 0, 3, Qt::AlignBottom);
    grid->addWidget(controls.customerGroups, 1, 3, row - 1, 1);
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(3, 2);
    return box;
}

QGroupBox* buildVatClasses(FormControls& controls, QWidget* parent) {
    auto* box = new QGroupBox(QStringLiteral("Veroluokka"), parent);
    box->setToolTip(QStringLiteral(
        "Ottaa huomioon tuotteen/tuoteryhmän veroluokan, toisen veroluokan, ja oston veroluokan."));

    const int editWidth = box->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 12;
    const auto classEdit = [&](const QString& editName, const QString& labelName, QLabel*& rate) {
        framework::NumberEdit* edit = numberEdit(editName, box);
        edit->setFixedWidth(editWidth);
        rate = new QLabel(box);
        rate->setObjectName(labelName);
        QFont bold = rate->font();
        bold.setBold(true);
        rate->setFont(bold);
        rate->setMinimumWidth(box->fontMetrics().horizontalAdvance(QStringLiteral("Ei löydy!  ")) +
                              8);
        return edit;
    };
    controls.sourceClass =
        classEdit(kSourceClassControl, QStringLiteral("LahdeLabel"), controls.sourceRate);
    controls.sourceCaption = captionLabel(controls.sourceClass, box);
    controls.targetClass =
        classEdit(kTargetClassControl, QStringLiteral("KohdeLabel"), controls.targetRate);
    controls.targetCaption = captionLabel(controls.targetClass, box);
    controls.unclassifiedNote = new QLabel(box);
    controls.unclassifiedNote->setObjectName(QStringLiteral("VeroluokattomatLabel"));
    controls.unclassifiedNote->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    controls.changeDay =
        named(new framework::DateEdit(box, QStringLiteral("Ei muutospäivää")), kChangeDayControl);
    controls.changeDayCaption = captionLabel(controls.changeDay, box);
    groupGrid(box);
    return box;
}

}  // namespace vatchange
