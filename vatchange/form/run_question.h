#pragma once

#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <functional>
#include <vector>

#include "data/engine/engine.h"
#include "vatchange/run/row_counts.h"

namespace vatchange {

/// What is told before a run.
struct RunQuestionFacts {
    QString company;
    QString definition;    ///< its name, or that it is not saved
    QString classes;       ///< "1 (24%) → 5 (25,5%)"
    QStringList problems;  ///< with which it should not be run
    QStringList findings;  ///< what looks like a mistake
    /// Findings that need the database, given the number of products (-1: unknown); called when all
    /// is counted. `stop` is asked now and then.
    std::function<QStringList(qint64 products, const std::function<bool()>& stop)> lateFindings =
        {};
    QString backup;  ///< when and where the last backup was made, or why there is none
    /// Makes a backup and returns the text about it; empty if none was made. Empty: no button.
    std::function<QString(QWidget* parent)> makeBackup = {};
};

/// The one question before a run: what it will change in which company. Accepted by "Muuta"; the
/// default is "Peruuta". The rows are counted while the window is open, a table at a time.
class RunQuestion : public QDialog {
    Q_OBJECT
  public:
    RunQuestion(QWidget* parent, data::Database& database, const ChangeDefinition& definition,
                RunQuestionFacts facts);

  private:
    QLayout* buildFacts();
    QWidget* buildCounts();
    QLayout* buildButtons();
    void addNotes(const QStringList& texts, bool serious);
    void fitNotes();
    void countNext();
    void backUp();

    data::Database& m_database;
    const RunQuestionFacts m_facts;
    const std::vector<RowCount> m_counts;
    std::vector<QLabel*> m_rows;  ///< the numbers, in the order of the counts
    QLabel* m_backup = nullptr;
    QLabel* m_notesTitle = nullptr;
    QListWidget* m_notes = nullptr;
    QTimer m_next;
    std::size_t m_counted = 0;
    qint64 m_products = -1;
};

}  // namespace vatchange
