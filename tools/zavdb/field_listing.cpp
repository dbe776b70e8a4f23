#include "tools/zavdb/field_listing.h"

#include <QStringList>
#include <algorithm>

#include "data/dictionary/tbl_res_reader.h"

namespace tools {

namespace {

using data::Kind;
using data::Storage;
using data::TFieldCacheItem;

bool samePlaces(const std::vector<TFieldCacheItem>& a, const std::vector<TFieldCacheItem>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const TFieldCacheItem& x, const TFieldCacheItem& y) {
                          return x.name.compare(y.name, Qt::CaseInsensitive) == 0 &&
                                 x.offset == y.offset && x.storedLength == y.storedLength &&
                                 x.storage == y.storage;
                      });
}

QString kindName(const TFieldCacheItem& field) {
    QString name;
    switch (field.kind()) {
        case Kind::RawBytes:
            name = QStringLiteral("raw");
            break;
        case Kind::String:
            name = QStringLiteral("string");
            break;
        case Kind::Date:
            name = QStringLiteral("date");
            break;
        case Kind::Memo:
            name = QStringLiteral("memo");
            break;
        case Kind::Boolean:
            name = QStringLiteral("boolean");
            break;
        case Kind::SmallInt:
            name = QStringLiteral("smallint");
            break;
        case Kind::Integer:
            name = QStringLiteral("integer");
            break;
        case Kind::Float:
            name = QStringLiteral("float");
            break;
        case Kind::VarBinary:
            name = QStringLiteral("varbinary");
            break;
        case Kind::Time:
            name = QStringLiteral("time");
            break;
        case Kind::Timestamp:
            name = QStringLiteral("timestamp");
            break;
        case Kind::Unsigned:
            name = QStringLiteral("unsigned");
            break;
        case Kind::LargeInt:
            name = QStringLiteral("largeint");
            break;
    }
    if (field.qualifier() != 0)
        name += QStringLiteral(":%1").arg(field.qualifier());
    return name;
}

QString storageName(Storage storage) {
    switch (storage) {
        case Storage::String:
            return QStringLiteral("STRING");
        case Storage::Integer:
            return QStringLiteral("INTEGER");
        case Storage::Float:
            return QStringLiteral("FLOAT");
        case Storage::Date:
            return QStringLiteral("DATE");
        case Storage::Time:
            return QStringLiteral("TIME");
        case Storage::Logical:
            return QStringLiteral("LOGICAL");
        case Storage::LString:
            return QStringLiteral("LSTRING");
        case Storage::ZString:
            return QStringLiteral("ZSTRING");
        case Storage::Note:
            return QStringLiteral("NOTE");
        case Storage::LVar:
            return QStringLiteral("LVAR");
        case Storage::UnsignedBinary:
            return QStringLiteral("UNSIGNED");
        case Storage::AutoIncrement:
            return QStringLiteral("AUTOINCREMENT");
        case Storage::Bit:
            return QStringLiteral("BIT");
        case Storage::Timestamp:
            return QStringLiteral("TIMESTAMP");
        case Storage::Blob:
            return QStringLiteral("BLOB");
        case Storage::Guid:
            return QStringLiteral("GUID");
        case Storage::DateDouble:
            return QStringLiteral("244");
        case Storage::Real48:
            return QStringLiteral("255");
    }
    return QString::number(static_cast<int>(storage));
}

/// Lines up columns: the first, and those named in `right`, are numbers.
QString aligned(const std::vector<QStringList>& rows, const QList<int>& right) {
    QList<qsizetype> widths(rows.front().size(), 0);
    for (const QStringList& row : rows)
        for (qsizetype i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    QString text;
    for (const QStringList& row : rows) {
        QStringList cells;
        for (qsizetype i = 0; i < row.size(); ++i)
            cells.append(right.contains(static_cast<int>(i)) ? row[i].rightJustified(widths[i])
                                                             : row[i].leftJustified(widths[i]));
        QString line = cells.join(QStringLiteral("  "));
        while (line.endsWith(u' '))
            line.chop(1);
        text += line + u'\n';
    }
    return text;
}

QString keyLine(const data::KeyDef& key, const data::RecordLayout& layout) {
    QStringList segments;
    for (const data::KeySegment& segment : key.segments) {
        QString name = layout.field(segment.fieldIndex).name;
        if (segment.ignoreCase)
            name += QStringLiteral(" (ignoring case)");
        if (segment.descending)
            name += QStringLiteral(" (descending)");
        segments.append(name);
    }
    return QStringLiteral("key %1  %2  %3\n")
        .arg(key.number)
        .arg(key.unique ? QStringLiteral("unique    ") : QStringLiteral("duplicates"),
             segments.join(QStringLiteral(", ")));
}

}  // namespace

std::vector<TFieldCacheItem> describedFields(const data::TableFile& records) {
    const data::RecordLayout& layout = records.layout();
    data::TTblResBase compiled;
    if (data::TTblResReader::ReadResource(layout.tableName(), compiled) &&
        samePlaces(compiled.FFields, layout.fields()))
        return compiled.FFields;
    return layout.fields();
}

QString fieldListing(const data::TableFile& records) {
    std::vector<QStringList> rows = {{QStringLiteral("No"), QStringLiteral("Field"),
                                      QStringLiteral("Kind"), QStringLiteral("Size"),
                                      QStringLiteral("Offset"), QStringLiteral("Stored"),
                                      QStringLiteral("Storage"), QStringLiteral("Mask")}};
    for (const TFieldCacheItem& field : describedFields(records))
        rows.push_back({QString::number(field.number), field.name, kindName(field),
                        QString::number(field.size), QString::number(field.offset),
                        QString::number(field.storedLength), storageName(field.storage),
                        field.mask == 0 ? QString() : QString::number(field.mask)});
    QString text = aligned(rows, {0, 3, 4, 5, 7});
    text += QStringLiteral("\nrecord length %1\n\n").arg(records.layout().recordLength());
    for (const data::KeyDef& key : records.keys())
        text += keyLine(key, records.layout());
    return text;
}

}  // namespace tools
