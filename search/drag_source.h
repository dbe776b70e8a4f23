#pragma once

#include <QMimeData>
#include <QString>

namespace search {

/// Drag data: a text and the name of the control it comes from.
QMimeData* dragData(const QString& sourceName, const QString& text);
/// Name of the control that the drag comes from; empty for drags of other programs.
QString dragSource(const QMimeData& data);

}  // namespace search
