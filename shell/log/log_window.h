#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QWidget>

#include "shell/log/log_model.h"

namespace shell {

/// A table that keeps its rows in place when rows are inserted above them.
class LogTable : public QTableView {
    Q_OBJECT
  public:
    explicit LogTable(QWidget* parent = nullptr);
    bool isAtEnd() const;
    /// Call after rows were inserted at the top.
    void moveBy(int rows);
};

/// Shows the logs of the company in use: the newest lines at the bottom, errors and notices in
/// colour and by themselves, lines that hold a text, lines that are being written.
class LogWindow : public QWidget {
    Q_OBJECT
  public:
    explicit LogWindow(QWidget* parent = nullptr);
    /// Reads the chosen log from its end.
    void reload();

  private:
    QLayout* buildChoices();
    QLayout* buildButtons();
    void buildTable();
    void applyFilter();
    void readOlder();
    void readNewer();
    void rowsInserted(int first, int last);
    void showState();
    void showSelected();
    void copySelected();
    void exportLines();
    void openOnDesktop();
    bool reportOnce(const std::function<void()>& work);
    QString fileName() const;

    LogModel m_model;
    QComboBox* m_log;
    QComboBox* m_kind;
    QLineEdit* m_search;
    QCheckBox* m_follow;
    LogTable* m_table;
    QPlainTextEdit* m_details;
    QLabel* m_state;
    QString m_problem;  ///< why the log cannot be read
    QTimer m_scan;      ///< looks through the older part while nothing else happens
    QTimer m_watch;     ///< looks for appended lines
    QTimer m_typed;     ///< waits for the end of typing
};

}  // namespace shell
