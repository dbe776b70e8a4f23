#pragma once

#include <QApplication>
#include <QTest>

#include "search/btr_haku_form.h"
#include "search/table_model.h"
#include "tests/support/checks.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"

namespace test {

/// What a cell of a search window shows; fails when there is no such column.
inline QString cellText(const search::TBtrHakuForm& form, int row, const QString& field) {
    const int column = form.model().columnOf(field);
    EXPECT_GE(column, 0) << field.toStdString();
    return form.model().index(row, column).data().toString();
}

/// The shown texts of a column, from the top.
inline QStringList columnTexts(const search::TBtrHakuForm& form, const QString& field) {
    form.model().learnAll();
    QStringList texts;
    for (int row = 0; row < form.model().rowCount(); ++row)
        texts.append(cellText(form, row, field));
    return texts;
}

/// The columns' fields from the left, hidden ones with a "-".
inline QStringList columnNames(const search::TBtrHakuForm& form) {
    QStringList names;
    for (int i = 0; i < form.model().columnCount(); ++i)
        names.append((form.DBGrid1->isColumnHidden(i) ? str("-") : str("")) +
                     form.model().column(i).field);
    return names;
}

inline void showForm(search::TBtrHakuForm& form) {
    form.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
    form.activateWindow();
    QApplication::processEvents();
}

}  // namespace test
