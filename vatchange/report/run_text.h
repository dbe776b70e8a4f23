#pragma once

#include <QString>

#include "data/engine/run_journal.h"
#include "vatchange/journal/history.h"

namespace vatchange {

// Runs in the words of the windows.

/// "Alv 24 - 25,5"; "tallettamaton määrittely" for one that was not saved.
QString definitionText(const data::JournalRun& run);
/// "Ajo 12: Alv 24 - 25,5", "Ajo 13: ajon 12 peruminen".
QString runTitle(const data::JournalRun& run);
/// What a state means for the user, a sentence: "Ajo keskeytettiin ennen loppua. ..."
QString stateMeaning(const data::JournalRun& run);
/// "aino@KASSA1"
QString whoText(const data::JournalRun& run);
/// "1 354 tuotetta", "120 riviä" if no product was changed.
QString amountText(const std::vector<ChangedRecords>& records);

/// What was last done in the company and how it ended, in one line: "Ajettu 1.9.2024 klo 0.30: Alv
/// 24 - 25,5, 1 354 tuotetta, ei virheitä". Empty if nothing was ever run. Reads heads and notes
/// only. @throws data::DataError.
QString lastRunText(data::RunJournal& journal);

}  // namespace vatchange
