#include "vatchange/views/undo_work.h"

#include <QLocale>

#include "company/company.h"
#include "company/logs.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/work_dialog.h"
#include "vatchange/changes/changed_fields.h"
#include "vatchange/views/run_problems.h"

namespace vatchange {

namespace {

constexpr int kShownConflicts = 10;

QString countText(qint64 count) {
    return QLocale(QLocale::Finnish).toString(count);
}

class WindowUndo : public UndoPorts {
  public:
    explicit WindowUndo(framework::WorkDialog& dialog) : m_dialog(dialog) {}

    void log(const QString& line) override { company::WriteAlvMuutosLog(line); }
    void webShopLog(const QString& line) override {
        company::writeLogLine(company::dataFolderFile(QStringLiteral("WEBKAUPPA.LOG")), line);
    }
    void conflict(const UndoConflict& conflict) override {
        log(QStringLiteral("Huomaa: perumisessa jätettiin ennalleen ") +
            QStringList{conflict.table, conflict.key, conflict.field, conflict.after,
                        conflict.present}
                .join(u';'));
        if (m_conflicts.size() < kShownConflicts)
            m_conflicts += conflictText(conflict);
    }
    void progress(qint64 done, qint64 total) override {
        m_dialog.step(QStringLiteral("Perutaan muutoksia"), done, total);
    }
    bool cancelled() override { return m_dialog.cancelled(); }

    const QStringList& conflicts() const { return m_conflicts; }

  private:
    static QString conflictText(const UndoConflict& conflict) {
        const QString place = tableTitle(conflict.table) + u' ' + conflict.key;
        switch (conflict.reason) {
            case UndoConflict::Reason::Changed:
                return QStringLiteral("%1, %2: ajo jätti %3, nyt %4")
                    .arg(place, conflict.field, conflict.after, conflict.present);
            case UndoConflict::Reason::Gone:
                return place + QStringLiteral(": poistettu ajon jälkeen");
            case UndoConflict::Reason::Exists:
                return place + QStringLiteral(": on taas olemassa");
            case UndoConflict::Reason::Order:
                return place + QStringLiteral(": tilausta on muutettu ajon jälkeen");
            case UndoConflict::Reason::Held:
                break;
        }
        return place + QStringLiteral(": toisen ohjelman käytössä");
    }

    framework::WorkDialog& m_dialog;
    QStringList m_conflicts;
};

QString resultText(const UndoResult& result, const QStringList& conflicts) {
    QString text = result.cancelled ? QStringLiteral("Peruminen keskeytettiin. Palautettu %1")
                                    : QStringLiteral("Palautettu %1");
    text = text.arg(countText(result.restored)) + QStringLiteral(" tietuetta");
    if (result.removed > 0)
        text += QStringLiteral(", poistettu %1").arg(countText(result.removed));
    if (result.putBack > 0)
        text += QStringLiteral(", lisätty takaisin %1").arg(countText(result.putBack));
    text += u'.';
    if (result.held > 0)
        text += QStringLiteral(
                    "\rToisen ohjelman käytössä oli %1 tietuetta. Toista peruminen, kun "
                    "ne ovat vapaat.")
                    .arg(countText(result.held));
    if (result.conflicts > 0)
        text += QStringLiteral("\rEnnalleen jäi %1, koska niitä on muutettu ajon jälkeen:")
                    .arg(countText(result.conflicts));
    for (const QString& conflict : conflicts)
        text += u'\r' + conflict;
    const qint64 all = result.conflicts + result.held;
    if (all > conflicts.size())
        text +=
            QStringLiteral("\r... ja %1 muuta, katso loki").arg(countText(all - conflicts.size()));
    return text;
}

}  // namespace

std::optional<UndoResult> undoWithProgress(QWidget* parent, data::Database& database, qint64 run,
                                           UndoOptions options) {
    options.user = company::userName();
    options.computer = company::computerName();
    options.logSize = company::changeLogSize;
    std::optional<UndoResult> result;
    QStringList conflicts;
    reportProblems(parent, [&] {
        framework::WorkDialog dialog(parent, QStringLiteral("Muutosten peruminen"));
        WindowUndo ports(dialog);
        result = undoRun(database, run, options, ports);
        conflicts = ports.conflicts();
    });
    if (!result)
        return std::nullopt;
    const QString text = resultText(*result, conflicts);
    if (result->clean())
        framework::Dialogs::message(parent, text);
    else
        framework::Dialogs::warning(parent, text);
    return result;
}

}  // namespace vatchange
