#pragma once

#include <QByteArray>
#include <QString>
#include <map>
#include <optional>

#include "data/engine/run_journal.h"
#include "vatchange/definition/change_definition.h"

namespace vatchange {

// What a run stores beside its changes, as notes of the journal.

inline const QString kDefinitionNote = QStringLiteral("definition");
inline const QString kRatesNote = QStringLiteral("rates");

/// The definition's values as they are run. Equal definitions give equal bytes.
QByteArray definitionNote(const ChangeDefinition& definition);
ChangeDefinition definitionOfNote(const QByteArray& note);

/// VAT rates in percent by class.
using VatRates = std::map<qint64, double>;
QByteArray ratesNote(const VatRates& rates);
VatRates ratesOfNote(const QByteArray& note);

/// The definition that a run was made with; nothing if its journal has none (an undo).
/// @throws data::DataError.
std::optional<ChangeDefinition> definitionOfRun(data::RunJournal& journal, qint64 run);

}  // namespace vatchange
