#pragma once

#include <QByteArray>
#include <QString>
#include <map>
#include <optional>

#include "data/engine/run_journal.h"
#include "vatchange/definition/change_definition.h"

namespace vatchange {

// Notes that a run stores in the journal with its changes.

inline const QString kDefinitionNote = QStringLiteral("definition");
inline const QString kRatesNote = QStringLiteral("rates");

/// The definition's values. Equal definitions give equal bytes.
QByteArray definitionNote(const ChangeDefinition& definition);
ChangeDefinition definitionOfNote(const QByteArray& note);

/// VAT rates in percent by class.
using VatRates = std::map<qint64, double>;
QByteArray ratesNote(const VatRates& rates);
VatRates ratesOfNote(const QByteArray& note);

/// The definition that a run used; nothing if the journal has none (an undo).
/// @throws data::DataError.
std::optional<ChangeDefinition> definitionOfRun(data::RunJournal& journal, qint64 run);

}  // namespace vatchange
