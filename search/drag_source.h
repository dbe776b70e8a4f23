#pragma once

#include <QMimeData>
#include <QString>

namespace search {

/// The data of a drag: a text, and the name of the control it comes from.
QMimeData* dragData(const QString& sourceName, const QString& text);
/// Name of the control that a drag of this program comes from; empty for any other drag.
QString dragSource(const QMimeData& data);

}  // namespace search
