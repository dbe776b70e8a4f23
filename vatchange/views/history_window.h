#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <vector>

#include "data/engine/engine.h"
#include "vatchange/views/history_model.h"

namespace vatchange {

/// "Ajohistoria": the runs of the current company, undos and batches included, and what can be done
/// with the selected one. Blocks the program's other windows, which could start a run meanwhile.
/// Deletes itself when it is closed.
class HistoryWindow : public QDialog {
    Q_OBJECT
  public:
    /// @throws data::DataError if the journal cannot be read.
    HistoryWindow(data::Database& database, QWidget* parent);

    HistoryModel& model() const { return *m_model; }
    void select(qint64 run) const;

  Q_SIGNALS:
    /// A run was resumed, undone, accepted or forgotten.
    void changed();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    /// A button and when it is of use.
    struct Action {
        QPushButton* button;
        bool (*possible)(const data::JournalRun& run);
    };
    void buildLayout();
    QTableView* buildTable();
    QLayout* buildActions();
    void addAction(QLayout* column, const QString& text, const QString& name, const QString& hint,
                   bool (*possible)(const data::JournalRun&), void (HistoryWindow::*work)());
    void refresh();
    void showSelected();
    const HistoryRun* selected() const;

    // what the buttons do with the selected run
    void report();
    void changes();
    void verify();
    void logLines();
    void resume();
    void undo();
    void acceptSelected();
    void forget();

    std::vector<qint64> runsToReport(const data::JournalRun& run);
    bool writeReport(const std::vector<qint64>& runs, const QString& fileName);

    data::Database& m_database;
    HistoryModel* m_model;
    QTableView* m_table = nullptr;
    QLabel* m_details = nullptr;
    std::vector<Action> m_actions;
};

}  // namespace vatchange
