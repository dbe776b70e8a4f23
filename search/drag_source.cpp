#include "search/drag_source.h"

namespace search {

namespace {

const QString kSourceFormat = QStringLiteral("application/x-taksavaihe-lahde");
const QString kTableFormat = QStringLiteral("application/x-taksavaihe-taulu");

}  // namespace

QMimeData* dragData(const QString& sourceName, const QString& text, const QString& table) {
    auto* data = new QMimeData;
    data->setText(text);
    data->setData(kSourceFormat, sourceName.toUtf8());
    if (!table.isEmpty())
        data->setData(kTableFormat, table.toUpper().toUtf8());
    return data;
}

QString dragSource(const QMimeData& data) {
    return QString::fromUtf8(data.data(kSourceFormat));
}

QString dragTable(const QMimeData& data) {
    return QString::fromUtf8(data.data(kTableFormat));
}

}  // namespace search
