#include "framework/ui/choice_controls.h"

#include <QFocusEvent>
#include <QRadioButton>
#include <QWheelEvent>
#include <algorithm>

namespace framework {

QString CheckBox::savedValue() const {
    return isChecked() ? QStringLiteral("1") : QStringLiteral("0");
}

bool CheckBox::setSavedValue(const QString& value) {
    const QString trimmed = value.trimmed();
    if (trimmed != QLatin1String("0") && trimmed != QLatin1String("1"))
        return false;
    setChecked(trimmed == QLatin1String("1"));
    return true;
}

void ChoiceCombo::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

bool LookupCombo::setKey(const QString& key) {
    const int index = findData(key);
    if (index < 0)
        return false;
    setCurrentIndex(index);
    return true;
}

bool LookupCombo::setSavedValue(const QString& value) {
    const QString trimmed = value.trimmed();
    return setKey(trimmed.isEmpty() ? QStringLiteral("0") : trimmed);
}

void LookupCombo::focusOutEvent(QFocusEvent* event) {
    ChoiceCombo::focusOutEvent(event);
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        Q_EMIT exited();
}

RadioGroup::RadioGroup(const QString& caption, const QStringList& items, int chosen,
                       QWidget* parent)
    : QGroupBox(caption, parent), m_buttons(new QButtonGroup(this)), m_grid(new QGridLayout(this)) {
    setAccessibleName(caption);
    for (const QString& item : items) {
        auto* button = new QRadioButton(item, this);
        button->setAccessibleName(caption + QStringLiteral(", ") + item.trimmed());
        const int row = static_cast<int>(m_buttons->buttons().size());
        m_buttons->addButton(button, row);
        m_grid->addWidget(button, row, 0);
    }
    setRows(static_cast<int>(items.size()));
    setItemIndex(chosen);
}

void RadioGroup::setRows(int rows) {
    for (int row = 0; row < rows; ++row) {
        const int height = m_buttons->button(0)->sizeHint().height();
        m_grid->setRowMinimumHeight(row, height);
        m_grid->setRowStretch(row, 1);
        if (m_grid->itemAtPosition(row, 0) == nullptr) {
            // A row without a widget of fixed height, as its neighbours have, gets another share.
            auto* filler = new QWidget(this);
            filler->setFixedHeight(height);
            m_grid->addWidget(filler, row, 0);
        }
    }
}

void RadioGroup::setItemIndex(int index) {
    if (QAbstractButton* button = m_buttons->button(index))
        button->setChecked(true);
}

QStringList RadioGroup::items() const {
    QStringList texts;
    for (const QAbstractButton* button : m_buttons->buttons())
        texts.append(button->text());
    return texts;
}

QString RadioGroup::savedValue() const {
    return QString::number(itemIndex());
}

bool RadioGroup::setSavedValue(const QString& value) {
    bool ok = false;
    const int index = value.trimmed().toInt(&ok);
    if (!ok || m_buttons->button(index) == nullptr)
        return false;
    setItemIndex(index);
    return true;
}

void CheckList::addNumbered(int number, const QString& name) {
    auto* row = new QListWidgetItem(QString::number(number) + QLatin1Char('=') + name, this);
    row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
    row->setCheckState(Qt::Unchecked);
    row->setData(Qt::UserRole, number);
}

std::vector<int> CheckList::checkedNumbers() const {
    std::vector<int> numbers;
    for (int i = 0; i < count(); ++i) {
        if (item(i)->checkState() == Qt::Checked)
            numbers.push_back(item(i)->data(Qt::UserRole).toInt());
    }
    return numbers;
}

void CheckList::setCheckedNumbers(const std::vector<int>& numbers) {
    for (int i = 0; i < count(); ++i) {
        const int number = item(i)->data(Qt::UserRole).toInt();
        const bool checked = std::find(numbers.begin(), numbers.end(), number) != numbers.end();
        item(i)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    }
}

QString CheckList::savedValue() const {
    QStringList numbers;
    for (const int number : checkedNumbers())
        numbers.append(QString::number(number));
    return numbers.join(QLatin1Char(','));
}

bool CheckList::setSavedValue(const QString& value) {
    std::vector<int> numbers;
    for (const QString& part : value.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        numbers.push_back(part.trimmed().toInt(&ok));
        if (!ok)
            return false;
    }
    setCheckedNumbers(numbers);
    return true;
}

}  // namespace framework
