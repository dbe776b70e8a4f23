#include "vatchange/journal/run_notes.h"

#include <QCborMap>
#include <QCborValue>

#include "vatchange/definition/definition_codec.h"

namespace vatchange {

QByteArray definitionNote(const ChangeDefinition& definition) {
    QCborMap map;
    const QMap<QString, QString> texts = encodeDefinition(definition);
    for (auto it = texts.constBegin(); it != texts.constEnd(); ++it) {
        // without those that are off the bytes are those of versions that did not know them
        if (!it->isEmpty() || !changeField(it.key()).optional)
            map.insert(it.key(), it.value());
    }
    return map.toCborValue().toCbor();
}

ChangeDefinition definitionOfNote(const QByteArray& note) {
    framework::SavedDefinition saved;
    const QCborMap map = QCborValue::fromCbor(note).toMap();
    for (const auto& [control, text] : map)
        saved.values.insert(control.toString(), text.toString());
    return decodeDefinition(saved).definition;
}

QByteArray ratesNote(const VatRates& rates) {
    QCborMap map;
    for (const auto& [vatClass, percent] : rates)
        map.insert(vatClass, percent);
    return map.toCborValue().toCbor();
}

VatRates ratesOfNote(const QByteArray& note) {
    VatRates rates;
    const QCborMap map = QCborValue::fromCbor(note).toMap();
    for (const auto& [vatClass, percent] : map)
        rates.emplace(vatClass.toInteger(), percent.toDouble());
    return rates;
}

std::optional<ChangeDefinition> definitionOfRun(data::RunJournal& journal, qint64 run) {
    const std::optional<QByteArray> note = journal.note(run, kDefinitionNote);
    if (!note)
        return std::nullopt;
    return definitionOfNote(*note);
}

}  // namespace vatchange
