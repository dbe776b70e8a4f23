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

/// A drop-down list that the mouse wheel passes over: scrolling must not choose.
class ChoiceCombo : public QComboBox {
    Q_OBJECT
  public:
    using QComboBox::QComboBox;

  protected:
    void wheelEvent(QWheelEvent* event) override;
};

/// A look-up combo: shows names, its value is the key of the chosen row.
class LookupCombo : public ChoiceCombo {
    Q_OBJECT
  public:
    explicit LookupCombo(QWidget* parent = nullptr) : ChoiceCombo(parent) {}
    void addRow(const QString& key, const QString& name) { addItem(name, key); }
    QString key() const { return currentData().toString(); }
    /// @return false, with the choice unchanged, when no row has the key.
    bool setKey(const QString& key);

  Q_SIGNALS:
    void exited();  ///< the focus moved on to another control of the window

  protected:
    void focusOutEvent(QFocusEvent* event) override;
};

/// One choice of several; its value is the item's index.
class RadioGroup : public QGroupBox {
    Q_OBJECT
  public:
    RadioGroup(const QString& caption, const QStringList& items, QWidget* parent = nullptr);
    int itemIndex() const { return m_buttons->checkedId(); }
    void setItemIndex(int index);
    QStringList items() const;
    /// Lays the items out as the first of so many equally high rows, so that groups side by side
    /// have their items level.
    void setRows(int rows);

  private:
    QButtonGroup* m_buttons;
    QGridLayout* m_grid;
};

/// A list of numbered items with check marks. A checked number that the list lacks gets a row of
/// its own, so that it is seen and can be taken off; the next set of numbers removes it.
class CheckList : public QListWidget {
    Q_OBJECT
  public:
    explicit CheckList(QWidget* parent = nullptr) : QListWidget(parent) {}
    QListWidgetItem* addNumbered(int number, const QString& name);
    std::vector<int> checkedNumbers() const;
    void setCheckedNumbers(const std::vector<int>& numbers);
};

}  // namespace framework
