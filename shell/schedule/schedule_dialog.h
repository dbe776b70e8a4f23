#pragma once

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <optional>

#include "company/batch_list.h"
#include "framework/ui/value_edits.h"
#include "shell/schedule/schedule_note.h"

namespace shell {

/// Asks when the saved batch, or its rehearsal, is started by the system's scheduler, and schedules
/// it. With an earlier schedule of the company it changes or removes that one.
class ScheduleDialog : public QDialog {
    Q_OBJECT
  public:
    /// `list`: the batch as saved.
    ScheduleDialog(const QString& company, const company::BatchList& list,
                   QWidget* parent = nullptr);

    /// Whether the earlier schedule was removed.
    bool removed() const { return m_removed; }

  private:
    QLayout* buildMoment();
    QLayout* buildButtons();
    void showExisting();
    void showMoment();
    /// Invalid if date or time cannot be read.
    QDateTime moment() const;
    QTime typedTime() const;
    void schedule();
    void removeExisting();
    bool agreesToLogon();

    const QString m_company;
    QStringList m_definitions;
    std::optional<ScheduleNote> m_existing;
    QRadioButton* m_run;
    QRadioButton* m_rehearse;
    framework::DateEdit* m_date;
    QLineEdit* m_time;
    QLabel* m_inWords;
    QLineEdit* m_password = nullptr;  ///< only where the scheduler takes one
    QPushButton* m_schedule;
    QPushButton* m_remove;
    bool m_removed = false;
};

/// Takes the company's schedule out of the scheduler and forgets it. @throws data::DataError
void removeScheduleAndTask(const QString& company);

}  // namespace shell
