#pragma once

#include <QDialog>
#include <QTimer>
#include <functional>
#include <memory>

#include "data/engine/engine.h"
#include "vatchange/changes/change_list.h"
#include "vatchange/changes/change_overview.h"
#include "vatchange/changes/change_reader.h"
#include "vatchange/views/changes_controls.h"
#include "vatchange/views/changes_model.h"

namespace vatchange {

/// What a changes window shows and what can be done in it.
struct ChangesContext {
    QString company;
    QString title;   ///< "Koeajo: Alv 24 - 25,5", "Ajo 12: Alv 24 - 25,5, 1.9.2024 klo 0.30"
    qint64 run = 0;  ///< records of this run can be undone; 0: of none
    data::Database* database = nullptr;  ///< the company's; null for a rehearsal
    /// Writes the PDF report to a file; empty: there is no button. @throws data::DataError
    std::function<void(const QString& fileName)> writePdf = {};
    /// Called after records have been undone.
    std::function<void()> undone = {};
};

/// The changes of runs: what people look at first at the top, all changes as a table below.
class ChangesWindow : public QDialog {
    Q_OBJECT
  public:
    /// Of a list that is filled.
    ChangesWindow(std::shared_ptr<ChangeList> list, ChangesContext context, QWidget* parent);
    /// Of runs that are read while the window is open. @throws RunRefused, data::DataError.
    ChangesWindow(const std::vector<qint64>& runs, ChangesContext context, QWidget* parent);
    ~ChangesWindow() override;

    bool isReading() const { return m_reader != nullptr; }
    const ChangeList& list() const { return *m_list; }
    const ChangesModel& model() const { return m_model; }
    const ChangesControls& controls() const { return m_controls; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void connectControls();
    void start();
    void readOn();
    void finishReading();
    void showOverview();
    void showPictures();
    void showSummary();
    void showFindings();
    void fillChoices();
    void showRowCount();
    void showStatus(const QString& text);

    ChangeFilter chosenFilter() const;
    void applyFilter();
    void clearFilter();
    void filterBySummary(const QTreeWidgetItem& item);
    void orderByColumn(int column);
    void applyOrder();
    /// Changes the rows, keeping the current one.
    void changeRows(const std::function<void(const ViewProgress&)>& change);

    void exportSpreadsheet();
    void exportPriceList();
    void exportPdf();
    void undoSelected();
    void updateButtons();
    std::vector<int> selectedRows() const;

    ChangesContext m_context;
    std::vector<qint64> m_runs;  // read from the database
    std::shared_ptr<ChangeList> m_list;
    std::unique_ptr<ChangeReader> m_reader;
    ChangeOverview m_overview;
    ChangesControls m_controls;
    ChangesModel m_model;
    QTimer m_read;
    QTimer m_search;
    QElapsedTimer m_sinceOverview;
};

/// Shows the changes of a rehearsal, which have been read before its copy was removed. The window
/// is modal to `parent` and deletes itself when it is closed, as the next.
ChangesWindow* showChanges(std::shared_ptr<ChangeList> list, const ChangesContext& context,
                           QWidget* parent);
/// Shows the changes of runs of `context.database`; several runs: those of a batch. Without a
/// `writePdf` of its own the PDF button writes the runs' report.
/// @throws RunRefused, data::DataError.
ChangesWindow* showRunChanges(const std::vector<qint64>& runs, const ChangesContext& context,
                              QWidget* parent);

}  // namespace vatchange
