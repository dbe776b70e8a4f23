// Any bytes as a form's saved definitions: read, set into the kinds of controls that a definition
// has, saved and read again. A value is taken or refused; what is taken reads back. The condition
// that a definition's texts lead to holds nothing of them but whole numbers.

#include <QApplication>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

#include "data/error.h"
#include "framework/core/definition_store.h"
#include "framework/ui/choice_controls.h"
#include "framework/ui/value_edits.h"
#include "vatchange/rules/selection.h"
#include "vatchange/rules/statements.h"

namespace {

void require(bool holds, int line = __builtin_LINE()) {
    if (holds)
        return;
    std::fprintf(stderr, "definition_fuzz.cpp:%d does not hold\n", line);
    std::abort();
}

struct Controls {
    framework::CheckBox check;
    framework::NumberEdit number{9};
    framework::DecimalEdit decimal{4, 1.0};
    framework::DateEdit date;
    framework::TextEdit text;
    framework::LookupCombo combo;
    framework::CheckList list;
    framework::RadioGroup radio{QStringLiteral("r"), {QStringLiteral("a"), QStringLiteral("b")}, 0};

    Controls() {
        combo.addRow(QStringLiteral("0"), QStringLiteral("Ei muutosta"));
        combo.addRow(QStringLiteral("hinta3"), QStringLiteral("Hinta 3"));
        list.addNumbered(1, QStringLiteral("Yksi"));
        list.addNumbered(12, QStringLiteral("Kaksitoista"));
    }
    std::vector<framework::SavedControl*> all() {
        return {&check, &number, &decimal, &date, &text, &combo, &list, &radio};
    }
};

void setValue(framework::SavedControl& control, const QString& value) {
    const QString before = control.savedValue();
    if (!control.setSavedValue(value)) {
        require(control.savedValue() == before);
        return;
    }
    const QString saved = control.savedValue();
    require(control.setSavedValue(saved));
    require(control.savedValue() == saved);
}

void useValue(Controls& controls, const QString& value) {
    for (framework::SavedControl* control : controls.all())
        setValue(*control, value);
    vatchange::ChangeDefinition definition;
    for (vatchange::GroupRestriction* group :
         {&definition.subGroup, &definition.productGroup, &definition.mainGroup}) {
        group->on = true;
        group->first = controls.number.value();
        group->ignored = value;
    }
    definition.productRangeOn = true;
    definition.productFirst = definition.productLast = value;
    static const QRegularExpression harmless(QStringLiteral("^[A-Za-z0-9_ .,()<>=]*$"));
    require(harmless.match(vatchange::selectionCondition(definition)).hasMatch());
    require(harmless.match(vatchange::groupRangeCondition(definition)).hasMatch());
    definition.levels[0].source = value;
    definition.levels[0].coefficient = controls.decimal.value();
    const QString assignments =
        vatchange::storePriceAssignments(definition, controls.decimal.value());
    if (!vatchange::isPriceColumn(value))
        require(assignments.isEmpty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 4096)
        return 0;
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QApplication application(argc, argv);
    static Controls controls;
    static const QTemporaryDir folder;
    const QString form = QStringLiteral("Lomake");
    framework::DefinitionStore store(folder.path());
    static const bool made = QDir(folder.path()).mkpath(QStringLiteral("MAARITYS"));
    require(made);
    {
        QFile file(store.fileName(form));
        require(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }
    try {
        for (const QString& definitionName : store.GetValues(form)) {
            const std::optional<framework::SavedDefinition> saved =
                store.load(form, definitionName);
            require(saved.has_value());
            for (const QString& value : saved->values)
                useValue(controls, value);
            if (!framework::DefinitionStore::nameProblem(definitionName).isEmpty())
                continue;
            store.save(form, *saved);
            require(store.load(form, definitionName)->values == saved->values);
        }
    } catch (const data::DataError& error) {
        require(!error.finnish().contains(u'\n'));
    }
    return 0;
}
