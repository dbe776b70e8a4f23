#pragma once

#include "tests/faults/full_company.h"
#include "tests/support/test_company.h"
#include "vatchange/journal/run_refused.h"
#include "vatchange/journal/undo.h"

namespace test {

/// Keeps what an undo reports; `stopAt`: throws after so many entries.
class RecordingUndo : public vatchange::UndoPorts {
  public:
    QStringList lines;      ///< of the change log
    QStringList conflicts;  ///< "TABLE key field run>present", other reasons by a word
    int stopAt = -1;
    std::function<void()> eachEntry;

    void log(const QString& line) override { lines += line; }
    void conflict(const vatchange::UndoConflict& conflict) override {
        static constexpr std::array kWords{"", "gone", "exists", "order", "held"};
        const QString what = QLatin1String(kWords.at(static_cast<size_t>(conflict.reason)));
        conflicts += conflict.table + u' ' + conflict.key + u' ' +
                     (what.isEmpty() ? conflict.field.toUpper() + u' ' + conflict.after + u'>' +
                                           conflict.present
                                     : what);
    }
    void progress(qint64 done, qint64) override {
        if (eachEntry)
            eachEntry();
        if (done == stopAt)
            throw std::runtime_error("stopped");
    }
};

inline vatchange::UndoOptions exactly() {
    vatchange::UndoOptions options;
    options.scope.exact = true;
    return options;
}

inline vatchange::UndoOptions part(const char* table, const char* key = "", bool exact = false) {
    vatchange::UndoOptions options;
    options.scope = {exact, QLatin1String(table), QString::fromUtf8(key)};
    return options;
}

/// The English text of a call that must be refused.
template <typename Call>
QString refusalOf(Call call) {
    try {
        call();
    } catch (const vatchange::RunRefused& refused) {
        return refused.english();
    }
    ADD_FAILURE() << "was not refused";
    return {};
}

inline data::RunState stateOf(data::Database& database, qint64 run) {
    return database.journal()->run(run).value().state;
}

}  // namespace test
