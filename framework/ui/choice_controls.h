#pragma once

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QListWidget>
#include <QStringList>
#include <vector>

#include "framework/ui/saved_control.h"

namespace framework {

/// A yes/no of a definition: "1" or "0".
class CheckBox : public QCheckBox, public SavedControl {
    Q_OBJECT
  public:
    using QCheckBox::QCheckBox;
    QString savedValue() const override;
    bool setSavedValue(const QString& value) override;
};

/// A drop-down list that the mouse wheel passes over: scrolling must not choose.
class ChoiceCombo : public QComboBox {
    Q_OBJECT
  public:
    using QComboBox::QComboBox;

  protected:
    void wheelEvent(QWheelEvent* event) override;
};

/// A look-up combo: shows names, its value is the key of the chosen row.
class LookupCombo : public ChoiceCombo, public SavedControl {
    Q_OBJECT
  public:
    explicit LookupCombo(QWidget* parent = nullptr) : ChoiceCombo(parent) {}
    void addRow(const QString& key, const QString& name) { addItem(name, key); }
    QString key() const { return currentData().toString(); }
    /// @return false, with the choice unchanged, when no row has the key.
    bool setKey(const QString& key);

    QString savedValue() const override { return key(); }
    bool setSavedValue(const QString& value) override;

  Q_SIGNALS:
    void exited();  ///< the focus moved on to another control of the window

  protected:
    void focusOutEvent(QFocusEvent* event) override;
};

/// One choice of several, saved as the item's index.
class RadioGroup : public QGroupBox, public SavedControl {
    Q_OBJECT
  public:
    RadioGroup(const QString& caption, const QStringList& items, int chosen,
               QWidget* parent = nullptr);
    int itemIndex() const { return m_buttons->checkedId(); }
    void setItemIndex(int index);
    QStringList items() const;
    /// Lays the items out as the first of so many equally high rows, so that groups side by side
    /// have their items level.
    void setRows(int rows);

    QString savedValue() const override;
    bool setSavedValue(const QString& value) override;

  private:
    QButtonGroup* m_buttons;
    QGridLayout* m_grid;
};

/// A list of numbered items with check marks, saved as the checked numbers separated by commas.
/// Numbers of a saved value that the list lacks are passed over.
class CheckList : public QListWidget, public SavedControl {
    Q_OBJECT
  public:
    explicit CheckList(QWidget* parent = nullptr) : QListWidget(parent) {}
    void addNumbered(int number, const QString& name);
    std::vector<int> checkedNumbers() const;
    void setCheckedNumbers(const std::vector<int>& numbers);

    QString savedValue() const override;
    bool setSavedValue(const QString& value) override;
};

}  // namespace framework
