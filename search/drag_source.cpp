#include "search/drag_source.h"

namespace search {

namespace {

const QString kSourceFormat = QStringLiteral("application/x-taksavaihe-lahde");

}  // namespace

QMimeData* dragData(const QString& sourceName, const QString& text) {
    auto* data = new QMimeData;
    data->setText(text);
    data->setData(kSourceFormat, sourceName.toUtf8());
    return data;
}

QString dragSource(const QMimeData& data) {
    return QString::fromUtf8(data.data(kSourceFormat));
}

}  // namespace search
