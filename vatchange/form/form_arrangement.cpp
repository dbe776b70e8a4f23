#include <QResizeEvent>

#include "vatchange/form/change_form.h"

// Where the groups of the change form stand, in a wide and in a narrow window.

namespace vatchange {

namespace {

enum Column { kLeft, kMiddle, kRight };

void emptyGrid(QGridLayout* grid) {
    while (const QLayoutItem* item = grid->takeAt(0))
        delete item;
    for (int row = 0; row < grid->rowCount(); ++row) {
        grid->setRowStretch(row, 0);
        grid->setRowMinimumHeight(row, 0);
    }
    for (int column = 0; column < grid->columnCount(); ++column)
        grid->setColumnStretch(column, 0);
}

}  // namespace

void arrangeGroups(const FormGroups& groups, bool narrow) {
    QGridLayout* grid = groups.grid;
    emptyGrid(grid);
    if (narrow) {
        grid->addWidget(groups.restrictions, 0, 0, 1, 2);
        grid->addWidget(groups.prices, 1, 0, 1, 2);
        grid->addWidget(groups.options, 2, 0);
        grid->addWidget(groups.rounding, 2, 1);
        grid->addWidget(groups.salesOrders, 3, 0);
        grid->addWidget(groups.purchaseOrders, 3, 1);
        grid->addWidget(groups.logging, 4, 0, 1, 2);
        for (const int column : {0, 1})
            grid->setColumnStretch(column, 1);
        return;
    }
    grid->addWidget(groups.restrictions, 0, kLeft, 1, 2);
    grid->addWidget(groups.vatClasses, 0, kRight);
    grid->addWidget(groups.prices, 1, kLeft, 3, 1);
    grid->addWidget(groups.options, 1, kMiddle);
    grid->addWidget(groups.rounding, 1, kRight);
    grid->addWidget(groups.salesOrders, 2, kMiddle);
    grid->addWidget(groups.purchaseOrders, 2, kRight);
    grid->addWidget(groups.logging, 3, kMiddle, 1, 2);
    // Proportional to their heights, so that all grow alike.
    const int stretches[] = {15, 20, 12, 5};
    for (int row = 0; row < 4; ++row)
        grid->setRowStretch(row, stretches[row]);
    grid->setColumnStretch(kMiddle, 1);
    grid->setColumnStretch(kRight, 1);
}

void arrangeVatClasses(const FormControls& controls, QGroupBox* box, bool oneRow) {
    auto* grid = static_cast<QGridLayout*>(box->layout());
    emptyGrid(grid);
    const int second = oneRow ? 4 : 0;  // column of the target class
    grid->addWidget(controls.sourceCaption, 0, 0);
    grid->addWidget(controls.sourceClass, 0, 1);
    grid->addWidget(controls.sourceRate, 0, 2);
    grid->addWidget(controls.targetCaption, oneRow ? 0 : 1, second);
    grid->addWidget(controls.targetClass, oneRow ? 0 : 1, second + 1);
    grid->addWidget(controls.targetRate, oneRow ? 0 : 1, second + 2);
    controls.unclassifiedNote->setText(oneRow ? QStringLiteral("0 rajaa vain veroluokattomat")
                                              : QStringLiteral("0 rajaa vain\nveroluokattomat"));
    if (oneRow) {
        grid->addWidget(controls.changeDayCaption, 0, 7);
        grid->addWidget(controls.changeDay, 0, 8);
        grid->addWidget(controls.unclassifiedNote, 0, 10);
        grid->setColumnStretch(9, 1);
        return;
    }
    grid->addWidget(controls.unclassifiedNote, 2, 1, 1, 2);
    grid->addWidget(controls.changeDayCaption, 3, 0);
    grid->addWidget(controls.changeDay, 3, 1, 1, 2);
    for (int row = 0; row < 4; ++row) {
        grid->setRowMinimumHeight(row, controls.sourceClass->sizeHint().height());
        grid->setRowStretch(row, 1);
    }
    grid->setColumnStretch(2, 1);
}

// In a narrow window the groups are scrolled; the VAT classes stay in sight beside "Muuta".
void TAlvMuutosLomake::arrangeGroups(bool narrow) {
    m_narrow = narrow;
    m_content->setMaximumSize(kLargestContent.width(),
                              narrow ? QWIDGETSIZE_MAX : kLargestContent.height());
    m_pinned->removeWidget(m_groups.vatClasses);
    arrangeVatClasses(m_controls, m_groups.vatClasses, narrow);
    vatchange::arrangeGroups(m_groups, narrow);
    if (narrow)
        m_pinned->addWidget(m_groups.vatClasses);
    QWidget* before = narrow ? static_cast<QWidget*>(m_controls.leaveWebShop)
                             : static_cast<QWidget*>(m_controls.customerGroups);
    setTabOrder(before, m_controls.sourceClass);
    setTabOrder(m_controls.sourceClass, m_controls.targetClass);
    setTabOrder(m_controls.targetClass, m_controls.changeDay);
    setTabOrder(narrow ? static_cast<QWidget*>(m_controls.changeDay) : m_controls.leaveWebShop,
                m_rehearse);
    setTabOrder(m_rehearse, Esikatsele);
}

void TAlvMuutosLomake::resizeEvent(QResizeEvent* event) {
    TPerusForm::resizeEvent(event);
    const bool narrow = width() < m_wideFrom;
    if (narrow != m_narrow)
        arrangeGroups(narrow);
}

}  // namespace vatchange
