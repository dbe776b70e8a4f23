#pragma once

#include <QComboBox>
#include <QDialog>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>
#include <array>

#include "search/search_grid.h"
#include "vatchange/changes/change_finding.h"
#include "vatchange/views/chart_widget.h"

namespace vatchange {

/// The controls of the changes window and their layout. The window owns them.
struct ChangesControls {
    explicit ChangesControls(QDialog& window);

    /// A number with a caption.
    struct Card {
        QLabel* value;
        QLabel* caption;
    };
    QLabel* title;
    QLabel* company;
    Card products;
    Card prices;
    Card mean;
    Card findings;
    QTreeWidget* summary;
    ChartWidget* spread;
    ChartWidget* endings;
    QLabel* findingsLabel;
    std::array<QPushButton*, kChangeFindings> finding;
    QLineEdit* search;
    QComboBox* table;
    QComboBox* level;
    QComboBox* order;
    QPushButton* clear;
    QLabel* rows;
    search::SearchGrid* grid;
    QLabel* status;
    QProgressBar* progress;
    QPushButton* spreadsheet;
    QPushButton* priceList;
    QPushButton* pdf;
    QPushButton* undo;
    QPushButton* close;

    /// Arranges the buttons of the findings that there are.
    void arrangeFindings();

  private:
    void create(QDialog& window);
    QLayout* cards(QDialog& window);
    QLayout* overview(QDialog& window);
    QLayout* filters(QDialog& window);
    QLayout* bottom();

    QGridLayout* m_findings;
};

}  // namespace vatchange
