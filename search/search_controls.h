#pragma once

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QToolBar>

#include "search/alku_merkki_edit.h"
#include "search/search_grid.h"

namespace search {

/// The controls of a search window and their layout, under their given names (also object names).
/// The window owns them.
struct SearchControls {
    explicit SearchControls(QDialog& window);

    QComboBox* IndexCombo;
    QLineEdit* SearchEdit;
    TAlkuMerkkiEdit* Suodatin;
    QCheckBox* AlueRajaus;
    QCheckBox* Passiiviset;
    QCheckBox* Jatahakuauki;
    QLabel* HakuLabel;
    SearchGrid* DBGrid1;
    QToolBar* DBNavigator1;
    QTimer* Timer;
    QAction* Tallenna;
    QAction* Tallennakorkeus;
    QAction* Sarakkeet;  ///< chooses the columns
    QAction* nbFirst;
    QAction* nbPrior;
    QAction* nbNext;
    QAction* nbLast;
    QAction* nbRefresh;
    QLabel* TilaLabel;  ///< what was saved, for some seconds
    QLabel* RiviLabel;  ///< number of rows
    QLabel* EhtoLabel;  ///< their restrictions; hidden without one, as the next
    QPushButton* PoistaRajaus;
    QLabel* SelitysLabel;  ///< what coloured rows mean; hidden without them
    QPushButton* Valitse;  ///< as a double click

  private:
    void create(QDialog& window);
    void createNavigator(QDialog& window);
    void createMenu(QDialog& window);
    void arrange(QDialog& window);
};

}  // namespace search
