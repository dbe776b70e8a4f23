#pragma once

#include <QMimeData>
#include <QString>

namespace search {

/// Drag data: a text, the name of the control it comes from and, of a record's number, the table.
QMimeData* dragData(const QString& sourceName, const QString& text, const QString& table = {});
/// Name of the control that the drag comes from; empty for drags of other programs.
QString dragSource(const QMimeData& data);
/// Table whose record's number is dragged, in capitals; empty for other texts.
QString dragTable(const QMimeData& data);

}  // namespace search
