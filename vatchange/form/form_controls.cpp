#include "vatchange/form/form_controls.h"

#include <QHBoxLayout>

#include "framework/ui/dialogs.h"

namespace vatchange {

PriceLevelBox::PriceLevelBox(int titleWidth, QWidget* parent)
    : QWidget(parent), m_label(new QLabel(this)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kColumnGap);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setFixedWidth(titleWidth);
    row->addWidget(m_label);
}

void PriceLevelBox::setTitle(const QString& title) {
    m_title = title;
    const QString shown =
        m_label->fontMetrics().elidedText(title, Qt::ElideRight, m_label->maximumWidth());
    m_label->setText(shown);
    m_label->setToolTip(shown == title ? QString() : title);
}

QGridLayout* groupGrid(QGroupBox* box) {
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(kGroupMargin, kRowGap, kGroupMargin, kGutter);
    grid->setHorizontalSpacing(kColumnGap);
    grid->setVerticalSpacing(kRowGap);
    return grid;
}

void levelRows(QGridLayout* grid, int count, int height) {
    for (int row = 0; row < count; ++row) {
        grid->setRowMinimumHeight(row, height);
        grid->setRowStretch(row, 1);
        if (grid->itemAtPosition(row, 0) == nullptr) {
            // Rows without a widget of fixed height would otherwise get a different share.
            auto* filler = new QWidget(grid->parentWidget());
            filler->setFixedHeight(height);
            grid->addWidget(filler, row, 0);
        }
    }
}

void nameControl(QWidget& control, const ChangeField& field) {
    control.setObjectName(field.control);
    control.setToolTip(framework::withLineBreaks(field.hint));
    control.setAccessibleName(field.accessibleName);
}

QCheckBox* namedCheckBox(const QString& objectName, QWidget* parent) {
    return named(new QCheckBox(changeField(objectName).caption, parent), objectName);
}

framework::NumberEdit* numberEdit(const QString& objectName, QWidget* parent) {
    return named(new framework::NumberEdit(changeField(objectName).digits, parent), objectName);
}

framework::DecimalEdit* decimalEdit(const QString& objectName, QWidget* parent) {
    return named(new framework::DecimalEdit(changeField(objectName).digits, parent), objectName);
}

framework::RadioGroup* choiceGroup(const QString& objectName, QWidget* parent) {
    const ChangeField& field = changeField(objectName);
    return named(new framework::RadioGroup(field.caption, field.items, parent), objectName);
}

framework::DecimalEdit* coefficientEdit(FormControls& controls, int tag, const QString& objectName,
                                        QWidget* parent) {
    framework::DecimalEdit* edit = decimalEdit(objectName, parent);
    edit->setProperty(kTagProperty, tag);
    edit->setFixedWidth(
        edit->fontMetrics().horizontalAdvance(QStringLiteral("1,0000000000000000")) + 18);
    controls.coefficients[static_cast<std::size_t>(tag - 1)] = edit;
    return edit;
}

QCheckBox* keepVat0Box(FormControls& controls, int tag, const QString& objectName,
                       QWidget* parent) {
    QCheckBox* box = namedCheckBox(objectName, parent);
    box->setProperty(kTagProperty, tag);
    controls.keepVat0[static_cast<std::size_t>(tag - 1)] = box;
    return box;
}

void markWrong(QLabel* label, bool wrong) {
    constexpr QColor kWrong(0xC6, 0x28, 0x28);
    QPalette palette;
    if (wrong) {
        palette.setColor(QPalette::Window, kWrong);
        palette.setColor(QPalette::WindowText, Qt::white);
    }
    label->setPalette(palette);
    label->setAutoFillBackground(wrong);
    label->setContentsMargins(wrong ? 4 : 0, 0, wrong ? 4 : 0, 0);
}

QLabel* captionLabel(QWidget* control, QWidget* parent) {
    auto* label = new QLabel(changeField(control->objectName()).caption, parent);
    label->setBuddy(control);
    return label;
}

}  // namespace vatchange
