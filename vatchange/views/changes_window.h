#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "data/engine/engine.h"
#include "vatchange/changes/change_list.h"
#include "vatchange/changes/change_reader.h"

namespace vatchange {

/// What a changes window shows and what can be done in it.
struct ChangesContext {
    QString company;
    QString title;   ///< "Koeajo: Alv 24 - 25,5", "Ajo 12: Alv 24 - 25,5, 1.9.2024 klo 0.30"
    qint64 run = 0;  ///< rows of this run can be undone; 0: of none
    data::Database* database = nullptr;  ///< the company; null for a rehearsal: nothing is undone
    /// Writes the PDF report to a file; empty: there is no button. @throws data::DataError
    std::function<void(const QString& fileName)> writePdf = {};
    /// Called after rows have been undone.
    std::function<void()> undone = {};
};

/// The changes of a rehearsal, which have been read before its copy was removed.
/// The window is modal to `parent` and deletes itself when it is closed, as the next.
QDialog* showChanges(std::shared_ptr<ChangeList> list, const ChangesContext& context,
                     QWidget* parent);
/// The changes of runs of the company's journal (`context.database`), read while the window is
/// open. Several runs: those of a batch. @throws RunRefused, data::DataError.
QDialog* showRunChanges(const std::vector<qint64>& runs, const ChangesContext& context,
                        QWidget* parent);

}  // namespace vatchange
