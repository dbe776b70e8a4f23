#pragma once

#include <gtest/gtest.h>

#include <QLocale>
#include <QPointer>
#include <QTest>

#include "framework/core/definition_store.h"
#include "framework/ui/definition_window.h"
#include "tests/support/checks.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "vatchange/form/change_form.h"

namespace test {

constexpr double k24To255 = 1.0120967741935485;  // 125.5 / 124
constexpr double k14To255 = 1.1008771929824561;  // 125.5 / 114

using Values = std::vector<std::pair<const char*, const char*>>;

inline void saveDefinition(const char* name, const Values& values, const char* description = "") {
    QMap<QString, QString> texts;
    for (const auto& [control, value] : values)
        texts[str(control)] = str(value);
    framework::DefinitionStore().save(vatchange::TAlvMuutosLomake::kFormName,
                                      {str(name), str(description), texts});
}

inline QString rangeWarning(const char* typed) {
    return str("Hintakerroin ( %1 ) ei ole sallituissa rajoissa, korjaa hintakerroin!\n"
               "(kertoimen on oltava vähintään 0,90 ja enintään 1,25 )")
        .arg(str(typed));
}

/// The active change form of a small company, driven by user input. Closing deletes it.
class FormTest : public ::testing::Test {
  protected:
    FormTest() {
        QLocale::setDefault(QLocale(QLocale::Finnish));
        openForm();
    }
    ~FormTest() override {
        delete m_form;
        QLocale::setDefault(QLocale::system());
    }
    void openForm() {
        delete m_form;
        m_form = new vatchange::TAlvMuutosLomake(m_shop.database());
        m_form->resize(1300, 700);  // wide enough for the three columns of groups
        m_form->show();
        QApplication::setActiveWindow(m_form);
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_form));
    }
    const vatchange::FormControls& c() const { return m_form->controls(); }
    template <class Control = QWidget>
    Control* control(const char* name) const {
        auto* found = m_form->findChild<Control*>(str(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    bool load(const char* name) const {
        return framework::TRapMaarForm::LataaArvot(*m_form, str(name));
    }
    void choose(const char* name) const {
        m_form->LatausCombo->setCurrentText(str(name));
        Q_EMIT m_form->LatausCombo->activated(m_form->LatausCombo->currentIndex());
    }

    // None of these processes events.
    static void type(QWidget* edit, const char* text) {
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, str(text));
    }
    void press(Qt::Key key, int times = 1) const {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(m_form->focusWidget(), key);
    }
    void click(const QWidget* target) const {
        QTest::mouseClick(m_form->windowHandle(), Qt::LeftButton, {},
                          target->mapTo(m_form.data(), target->rect().center()));
    }
    /// Presses the keys one by one and names the control that has the focus after each.
    std::string focusPath(QWidget* start, const std::vector<Qt::Key>& keys) const {
        start->setFocus();
        QStringList names;
        for (const Qt::Key key : keys) {
            press(key);
            names += m_form->focusWidget()->objectName();
        }
        return names.join(u' ').toStdString();
    }

    ScriptedDialogs m_dialogs;
    ShopCompany m_shop;
    QPointer<vatchange::TAlvMuutosLomake> m_form;
};

}  // namespace test
