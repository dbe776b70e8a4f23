#pragma once

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QListWidget>
#include <QStringList>
#include <vector>

namespace framework {

/// A drop-down list that ignores the mouse wheel: scrolling must not change the choice.
class ChoiceCombo : public QComboBox {
    Q_OBJECT
  public:
    using QComboBox::QComboBox;

  protected:
    void wheelEvent(QWheelEvent* event) override;
};

/// A combo box of names whose value is the key of the chosen row.
class LookupCombo : public ChoiceCombo {
    Q_OBJECT
  public:
    explicit LookupCombo(QWidget* parent = nullptr) : ChoiceCombo(parent) {}
    void addRow(const QString& key, const QString& name) { addItem(name, key); }
    QString key() const { return currentData().toString(); }
    /// @return false, leaving the choice unchanged, if no row has the key
    bool setKey(const QString& key);

  Q_SIGNALS:
    void exited();  ///< focus moved to another control of the window

  protected:
    void focusOutEvent(QFocusEvent* event) override;
};

/// A group of radio buttons; its value is the item's index.
class RadioGroup : public QGroupBox {
    Q_OBJECT
  public:
    RadioGroup(const QString& caption, const QStringList& items, QWidget* parent = nullptr);
    int itemIndex() const { return m_buttons->checkedId(); }
    void setItemIndex(int index);
    QStringList items() const;
    /// Lays the items out in a grid of this many equal rows, so that groups side by side align.
    void setRows(int rows);

  private:
    QButtonGroup* m_buttons;
    QGridLayout* m_grid;
};

/// A list of numbered items with check marks. A checked number that is not in the list gets a row
/// of its own, so that the user sees it and can clear it; the next setCheckedNumbers() removes the
/// row.
class CheckList : public QListWidget {
    Q_OBJECT
  public:
    explicit CheckList(QWidget* parent = nullptr) : QListWidget(parent) {}
    QListWidgetItem* addNumbered(int number, const QString& name);
    std::vector<int> checkedNumbers() const;
    void setCheckedNumbers(const std::vector<int>& numbers);
};

}  // namespace framework
