#include "vatchange/form/definition_controls.h"

#include <QCheckBox>
#include <QSignalBlocker>
#include <algorithm>

#include "framework/ui/choice_controls.h"
#include "framework/ui/value_edits.h"
#include "vatchange/definition/definition_codec.h"

namespace vatchange {

namespace {

template <typename Control>
Control& controlOf(const QWidget& form, const ChangeField& field) {
    auto* control = form.findChild<Control*>(field.control);
    Q_ASSERT(control != nullptr);
    return *control;
}

/// One control: reads its value into a definition, or shows the definition's.
class Binding {
  public:
    /// `text`: a whole number as it is to be shown.
    Binding(const QWidget& form, const ChangeField& field, QString text = {})
        : m_form(form), m_field(field), m_text(std::move(text)) {}

    bool value(bool*) const { return control<QCheckBox>().isChecked(); }
    int value(int*) const { return static_cast<int>(control<framework::NumberEdit>().value()); }
    qint64 value(qint64*) const { return control<framework::NumberEdit>().value(); }
    double value(double*) const { return control<framework::DecimalEdit>().value(); }
    std::optional<qint64> value(std::optional<qint64>*) const {
        const auto& edit = control<framework::NumberEdit>();
        return edit.isEmpty() ? std::nullopt : std::optional(edit.value());
    }
    std::optional<double> value(std::optional<double>*) const {
        const auto& edit = control<framework::DecimalEdit>();
        return edit.isEmpty() ? std::nullopt : std::optional(edit.value());
    }
    QDate value(QDate*) const { return control<framework::DateEdit>().date(); }
    QString value(QString*) const {
        return m_field.kind == FieldKind::Source ? control<framework::LookupCombo>().key()
                                                 : control<framework::TextEdit>().text();
    }
    std::vector<int> value(std::vector<int>*) const {
        std::vector<int> numbers = control<framework::CheckList>().checkedNumbers();
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    }
    RoundingRule value(RoundingRule*) const { return static_cast<RoundingRule>(itemIndex()); }
    RoundingStep value(RoundingStep*) const { return static_cast<RoundingStep>(itemIndex()); }

    void show(bool on) const {
        silent<QCheckBox>([&](auto& box) { box.setChecked(on); });
    }
    void show(qint64) const {
        silent<framework::NumberEdit>([&](auto& edit) { edit.setText(m_text); });
    }
    void show(int) const { show(qint64{}); }
    void show(double number) const {
        silent<framework::DecimalEdit>([&](auto& edit) { edit.setValue(number); });
    }
    void show(const std::optional<qint64>&) const { show(qint64{}); }
    void show(const std::optional<double>& number) const {
        silent<framework::DecimalEdit>([&](auto& edit) {
            if (number)
                edit.setValue(*number);
            else
                edit.setNothing();
        });
    }
    void show(const QDate& date) const {
        silent<framework::DateEdit>([&](auto& edit) { edit.setDate(date); });
    }
    void show(const QString& text) const {
        if (m_field.kind == FieldKind::Source)
            silent<framework::LookupCombo>([&](auto& combo) { combo.setKey(text); });
        else
            silent<framework::TextEdit>([&](auto& edit) { edit.setText(text); });
    }
    void show(const std::vector<int>& numbers) const {
        silent<framework::CheckList>([&](auto& list) { list.setCheckedNumbers(numbers); });
    }
    void show(RoundingRule rule) const { showItem(static_cast<int>(rule)); }
    void show(RoundingStep step) const { showItem(static_cast<int>(step)); }

  private:
    template <typename Control>
    Control& control() const {
        return controlOf<Control>(m_form, m_field);
    }
    template <typename Control, typename Change>
    void silent(Change&& change) const {
        const QSignalBlocker blocker(control<Control>());
        change(control<Control>());
    }
    int itemIndex() const { return control<framework::RadioGroup>().itemIndex(); }
    void showItem(int index) const {
        silent<framework::RadioGroup>([&](auto& group) { group.setItemIndex(index); });
    }

    const QWidget& m_form;
    const ChangeField& m_field;
    const QString m_text;
};

}  // namespace

ChangeDefinition definitionInControls(const QWidget& form) {
    ChangeDefinition definition;
    for (const ChangeField& field : changeFields()) {
        const Binding binding(form, field);
        std::visit(
            [&](const auto& member) {
                auto& value = member.of(definition);
                value = binding.value(&value);
            },
            field.member);
    }
    return definition;
}

void showInControls(const QWidget& form, const ChangeDefinition& definition,
                    const framework::SavedDefinition& typed) {
    const auto texts = encodeDefinition(definition, typed);
    for (const ChangeField& field : changeFields()) {
        const Binding binding(form, field, texts.value(field.control));
        std::visit([&](const auto& member) { binding.show(member.of(definition)); }, field.member);
    }
}

QMap<QString, QString> textsInControls(const QWidget& form) {
    framework::SavedDefinition typed;
    for (const ChangeField& field : changeFields()) {
        if (isWholeNumber(field)) {
            typed.values.insert(field.control,
                                controlOf<framework::NumberEdit>(form, field).text());
        }
    }
    return encodeDefinition(definitionInControls(form), typed);
}

}  // namespace vatchange
