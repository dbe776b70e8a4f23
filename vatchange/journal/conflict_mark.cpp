#include "vatchange/journal/conflict_mark.h"

#include <QCborArray>
#include <QCborValue>

namespace vatchange {

namespace {

const QByteArray kWord = QByteArrayLiteral("conflict ");

}  // namespace

QByteArray conflictMark(const ToldConflicts& told) {
    QCborArray all{told.seq};
    for (const UndoConflict& conflict : told.conflicts)
        all.append(QCborArray{static_cast<int>(conflict.reason), conflict.table, conflict.key,
                              conflict.field, conflict.after, conflict.present});
    return kWord + all.toCborValue().toCbor();
}

std::optional<ToldConflicts> conflictsOfMark(const QByteArray& mark) {
    if (!mark.startsWith(kWord))
        return std::nullopt;
    const QCborArray all = QCborValue::fromCbor(mark.mid(kWord.size())).toArray();
    ToldConflicts told{all.first().toInteger(), {}};
    for (qsizetype i = 1; i < all.size(); ++i) {
        const QCborArray parts = all.at(i).toArray();
        told.conflicts.push_back({static_cast<UndoConflict::Reason>(parts.at(0).toInteger()),
                                  parts.at(1).toString(), parts.at(2).toString(),
                                  parts.at(3).toString(), parts.at(4).toString(),
                                  parts.at(5).toString()});
    }
    return told;
}

}  // namespace vatchange
