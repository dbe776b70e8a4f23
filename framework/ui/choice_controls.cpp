#include "framework/ui/choice_controls.h"

#include <QFocusEvent>
#include <QRadioButton>
#include <QWheelEvent>
#include <algorithm>

namespace framework {

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

void LookupCombo::focusOutEvent(QFocusEvent* event) {
    ChoiceCombo::focusOutEvent(event);
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        Q_EMIT exited();
}

RadioGroup::RadioGroup(const QString& caption, const QStringList& items, QWidget* parent)
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
}

void RadioGroup::setRows(int rows) {
    for (int row = 0; row < rows; ++row) {
        const int height = m_buttons->button(0)->sizeHint().height();
        m_grid->setRowMinimumHeight(row, height);
        m_grid->setRowStretch(row, 1);
        if (m_grid->itemAtPosition(row, 0) == nullptr) {
            // Without a widget of fixed height the row would get a different share than its
            // neighbours.
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

namespace {
constexpr int kNumberRole = Qt::UserRole;
constexpr int kMissingRole = Qt::UserRole + 1;  // marks a checked number not in the list
}  // namespace

QListWidgetItem* CheckList::addNumbered(int number, const QString& name) {
    auto* row = new QListWidgetItem(QString::number(number) + QLatin1Char('=') + name, this);
    row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
    row->setCheckState(Qt::Unchecked);
    row->setData(kNumberRole, number);
    return row;
}

std::vector<int> CheckList::checkedNumbers() const {
    std::vector<int> numbers;
    for (int i = 0; i < count(); ++i) {
        if (item(i)->checkState() == Qt::Checked)
            numbers.push_back(item(i)->data(kNumberRole).toInt());
    }
    return numbers;
}

void CheckList::setCheckedNumbers(const std::vector<int>& numbers) {
    std::vector<int> missing = numbers;
    for (int i = count() - 1; i >= 0; --i) {
        if (item(i)->data(kMissingRole).toBool()) {
            delete takeItem(i);
            continue;
        }
        const int number = item(i)->data(kNumberRole).toInt();
        const bool checked = std::erase(missing, number) > 0;
        item(i)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    }
    for (const int number : missing) {
        QListWidgetItem* row = addNumbered(number, QStringLiteral("(ei löydy)"));
        row->setData(kMissingRole, true);
        row->setCheckState(Qt::Checked);
    }
}

}  // namespace framework
