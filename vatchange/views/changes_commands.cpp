#include <QApplication>
#include <QDir>
#include <QSaveFile>

#include "framework/ui/close_deferral.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/pdf_report.h"
#include "framework/ui/work_dialog.h"
#include "platform/csv.h"
#include "vatchange/changes/change_exports.h"
#include "vatchange/views/changes_window.h"
#include "vatchange/views/run_problems.h"
#include "vatchange/views/undo_selection.h"
#include "vatchange/views/undo_work.h"

// Exports and undo of the changes window.

namespace vatchange {

namespace {

const QString kCsvFiles = QStringLiteral("CSV-tiedostot (*.csv)");

QString fileNameOf(const QString& what, const QString& title, const QString& ending) {
    const QString name = framework::pdfFileName(what + u' ' + title);
    return name.chopped(4) + ending;  // without ".pdf"
}

/// Writes a file that appears only when it is complete. `write` returns false to give it up.
bool saveFile(const QString& fileName, const std::function<bool(QIODevice&)>& write) {
    QSaveFile file(fileName);
    const auto failed = [&](const QString& why) {
        return data::DataError(data::ErrorKind::Io, QDir::toNativeSeparators(fileName), why);
    };
    if (!file.open(QIODevice::WriteOnly))
        throw failed(file.errorString());
    try {
        if (!write(file))
            return false;
    } catch (const platform::CsvError&) {
        throw failed(file.errorString());
    }
    if (!file.commit())
        throw failed(file.errorString());
    return true;
}

}  // namespace

void ChangesWindow::exportSpreadsheet() {
    const QString fileName = framework::Dialogs::saveFileName(
        this, QStringLiteral("Vie taulukkoon"),
        fileNameOf(QStringLiteral("Muutokset"), m_context.title, QStringLiteral(".csv")),
        kCsvFiles);
    if (fileName.isEmpty())
        return;
    reportProblems(this, [&] {
        framework::WorkDialog dialog(this, QStringLiteral("Vie taulukkoon"));
        const bool written = saveFile(fileName, [&](QIODevice& file) {
            return writeSpreadsheet(*m_list, m_model.view(), file, [&dialog](double share) {
                return dialog.step(QStringLiteral("Kirjoitetaan rivejä"),
                                   static_cast<qint64>(share * 1000), 1000);
            });
        });
        if (written)
            showStatus(QStringLiteral("Talletettu: ") + QDir::toNativeSeparators(fileName));
    });
}

void ChangesWindow::exportPriceList() {
    const int answer = framework::Dialogs::choose(
        this,
        QStringLiteral("Hinnastoon tulevat tuotteiden muuttuneet hinnat: tuotenumero, nimi, taso, "
                       "vanha ja uusi hinta.\r\rMissä muodossa?"),
        {QStringLiteral("&Rivi joka hinnasta"), QStringLiteral("Rivi joka &tuotteesta"),
         QStringLiteral("&Peruuta")});
    if (answer > 1)
        return;
    const QString fileName = framework::Dialogs::saveFileName(
        this, QStringLiteral("Hinnasto"),
        fileNameOf(QStringLiteral("Hinnasto"), m_context.title, QStringLiteral(".csv")), kCsvFiles);
    if (fileName.isEmpty())
        return;
    reportProblems(this, [&] {
        saveFile(fileName, [&](QIODevice& file) {
            writePriceList(*m_list, answer == 0 ? PriceListForm::Prices : PriceListForm::Products,
                           file);
            return true;
        });
        showStatus(QStringLiteral("Talletettu: ") + QDir::toNativeSeparators(fileName));
    });
}

void ChangesWindow::exportPdf() {
    const QString fileName = framework::Dialogs::saveFileName(
        this, QStringLiteral("Talleta PDF-raportti"), framework::pdfFileName(m_context.title),
        QStringLiteral("PDF-tiedostot (*.pdf)"));
    if (fileName.isEmpty())
        return;
    reportProblems(this, [&] {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        const auto restored = qScopeGuard([] { QApplication::restoreOverrideCursor(); });
        m_context.writePdf(fileName);
        showStatus(QStringLiteral("Talletettu: ") + QDir::toNativeSeparators(fileName));
    });
}

std::vector<int> ChangesWindow::selectedRows() const {
    std::vector<int> rows;
    const QItemSelection selection = m_controls.grid->selectionModel()->selection();
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(m_model.listRow(row));
    }
    return rows;
}

void ChangesWindow::undoSelected() {
    UndoOptions options;
    options.scope = undoScopeOfRows(*m_list, m_context.run, selectedRows());
    if (options.scope.records.empty()) {
        framework::Dialogs::message(
            this, QStringLiteral("Valituilla riveillä ei ole peruttavaa: ajo ei muuttanut niitä, "
                                 "tai muutos on jo peruttu."));
        return;
    }
    const QString question =
        QStringLiteral(
            "Perutaanko ajon %1 muutokset näistä tietueista?\r\r%2\r\r"
            "Tietueeseen palautetaan kaikki kentät, jotka ajo muutti, tilaukseen myös "
            "sen muut rivit. Kenttä, jota on muutettu ajon jälkeen, jää ennalleen. "
            "Kassat, etiketit ja verkkokauppa saavat palautetut hinnat muutoksina. Muu "
            "osa ajosta jää voimaan.")
            .arg(m_context.run)
            .arg(scopeText(options.scope));
    if (!framework::Dialogs::ask(this, question))
        return;
    if (!undoWithProgress(this, *m_context.database, m_context.run, options))
        return;
    if (m_context.undone)
        m_context.undone();
    reportProblems(this, [this] {
        auto list = std::make_shared<ChangeList>();
        m_reader = std::make_unique<ChangeReader>(*m_context.database, m_runs, *list);
        const std::shared_ptr<ChangeList> previous = std::exchange(m_list, list);
        m_model.show(*m_list);
        // tables and findings may be other ones now
        m_controls.table->setCurrentIndex(0);
        m_controls.order->setCurrentIndex(0);
        m_controls.grid->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
        readOn();
        applyFilter();
    });
}

}  // namespace vatchange
