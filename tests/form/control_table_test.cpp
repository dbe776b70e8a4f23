#include <gtest/gtest.h>

#include <QApplication>
#include <QScrollArea>

#include "framework/ui/program_style.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "tests/support/window_checks.h"
#include "vatchange/definition/definition_codec.h"
#include "vatchange/form/change_form.h"

namespace {

TEST(ControlTable, EveryControlIsAFieldOfTheTableAndSpeaks) {
    test::ScriptedDialogs dialogs;
    const test::ShopCompany shop;
    const vatchange::TAlvMuutosLomake form(shop.database());
    EXPECT_EQ(form.definitionFromForm(), vatchange::ChangeDefinition());

    const QStringList fields = vatchange::encodeDefinition({}).keys();
    QStringList controls;
    for (const QWidget* control : form.findChildren<QWidget*>()) {
        const bool holdsValue = qobject_cast<const framework::ExitEdit*>(control) != nullptr ||
                                qobject_cast<const QCheckBox*>(control) != nullptr ||
                                qobject_cast<const framework::LookupCombo*>(control) != nullptr ||
                                qobject_cast<const framework::RadioGroup*>(control) != nullptr ||
                                qobject_cast<const framework::CheckList*>(control) != nullptr;
        if (holdsValue)
            controls.append(control->objectName());
        if (fields.contains(control->objectName())) {
            EXPECT_EQ(control->accessibleDescription(), control->toolTip());
        }
    }
    controls.sort();
    EXPECT_EQ(controls, fields);
    test::expectNoMnemonicClash(form);
    test::expectEveryControlSpeaks(form);
}

TEST(ControlTable, EverythingFitsASmallScreen) {
    test::ScriptedDialogs dialogs;
    const test::ShopCompany shop;
    QApplication::setStyle(new framework::ProgramStyle);
    vatchange::TAlvMuutosLomake form(shop.database());
    form.setAttribute(Qt::WA_DeleteOnClose, false);
    QWidget* content = form.findChild<QScrollArea*>()->widget();
    const QSize around(4, form.Esikatsele->sizeHint().height() + 24);
    const QSize needed = content->sizeHint() + around;
    // 1366 x 768 without a task bar of 40 and a title bar; 1920 x 1080 at 150 % is a bit less
    EXPECT_LE(needed.width(), 1276);
    EXPECT_LE(needed.height(), 664);
    form.resize(needed);
    form.show();
    test::expectNothingClipped(form);
    QApplication::setStyle(QStringLiteral("Fusion"));
}

TEST(ControlTable, NamesComeFromTheCompany) {
    test::ScriptedDialogs dialogs;
    const test::ShopCompany shop;
    shop.exec(QStringLiteral("update HINTATASO set Nimi = 'Tukku & Vähittäis' where Nro = 3"));
    const vatchange::TAlvMuutosLomake form(shop.database());

    EXPECT_EQ(form.windowTitle(), QStringLiteral("ALV muutos"));
    EXPECT_EQ(form.Esikatsele->text(), QStringLiteral("&Muuta"));
    EXPECT_EQ(form.Esikatsele->toolTip(), QStringLiteral("Muuta tuotteiden tiedot"));
    EXPECT_TRUE(form.Tulosta->isHidden());
    EXPECT_EQ(form.controls().levelBoxes[2]->title(), QStringLiteral("Tukku & Vähittäis"));
    EXPECT_EQ(form.controls().levelBoxes[8]->title(), QStringLiteral("Hinta 9"));

    const framework::LookupCombo* source = form.controls().source(4);
    ASSERT_EQ(source->count(), 10);
    EXPECT_EQ(source->itemText(0), QStringLiteral("Ei muutosta"));
    EXPECT_EQ(source->itemText(3), QStringLiteral("Tukku & Vähittäis"));
    const QStringList keys = {"0",      "hinta",  "kaksoishinta", "hinta3", "hinta4",
                              "hinta5", "hinta6", "hinta7",       "hinta8", "hinta9"};
    for (int i = 0; i < keys.size(); ++i)
        EXPECT_EQ(source->itemData(i).toString(), keys[i]);

    const framework::CheckList* groups = form.controls().customerGroups;
    ASSERT_EQ(groups->count(), 3);
    EXPECT_EQ(groups->item(2)->text(), QStringLiteral("5=Henkilökunta"));
}

TEST(ControlTable, MissingPriceLevelIsAnError) {
    const test::ShopCompany shop;
    shop.exec(QStringLiteral("delete from HINTATASO where Nro = 7"));
    try {
        const vatchange::TAlvMuutosLomake form(shop.database());
        FAIL() << "the form was made without price level 7";
    } catch (const data::DataError& e) {
        EXPECT_EQ(e.table(), QStringLiteral("HINTATASO"));
        EXPECT_TRUE(e.detail().startsWith(QStringLiteral("hintatasoa ei löydy")));
    }
}

}  // namespace
