#include "vatchange/journal/undo_signals.h"

#include <array>

#include "data/clock.h"
#include "data/record/record_codec.h"
#include "framework/core/settings_table.h"
#include "vatchange/journal/record_hold.h"
#include "vatchange/rules/web_shop_letters.h"

namespace vatchange {

namespace {

constexpr int kRowsOfProduct = 1000;
const QString kProductTable = QStringLiteral("TUOTE");
constexpr qint64 kShelfLabel = 1;

/// What a label that is to be printed does not have; older tables lack the last three.
constexpr std::array<const char*, 17> kClearedFields{"TULPVM",
                                                     "TULAIKA",
                                                     "H1",
                                                     "H2",
                                                     "H3",
                                                     "H4",
                                                     "H5",
                                                     "H6",
                                                     "H7",
                                                     "H8",
                                                     "H9",
                                                     "VOIMASSA",
                                                     "PANTTI",
                                                     "MAARAALE",
                                                     "MAARAALEHINTA",
                                                     "MAARAALEKPL",
                                                     "MAARAALEHINPANTTILLA"};

QByteArray emptyRecord(const data::RecordLayout& layout) {
    QByteArray record(layout.recordLength(), '\0');
    for (const data::TFieldCacheItem& field : layout.fields())
        data::clearField(field, reinterpret_cast<uchar*>(record.data()));
    return record;
}

void set(const data::RecordLayout& layout, QByteArray& record, const char* name,
         const data::Value& value) {
    const int index = layout.indexOf(QLatin1String(name));
    if (index < 0)
        throw data::DataError(data::ErrorKind::NoSuchField, layout.tableName(),
                              QLatin1String(name));
    data::writeValue(layout.field(index), reinterpret_cast<uchar*>(record.data()), value,
                     layout.tableName());
}

QChar letterOf(const UndoTable& table, const QByteArray& record) {
    const int field = table.layout().indexOf(QStringLiteral("Tyyppi"));
    const QString text = field < 0 ? QString() : fieldText(table.layout(), field, record);
    return text.isEmpty() ? QChar() : text.front();
}

}  // namespace

void UndoSignals::repeat(const UndoTable& table, const NetChange& change) {
    if (table.isLabel())
        label(table, table.keyValue(change.key, 1).toString());
    else
        mark(table, change);
}

double UndoSignals::labelsOf(const QString& product) {
    if (!m_products)
        m_products = m_database.openTable(kProductTable);
    const auto found = m_products->seek(0, data::SeekOp::Equal, {product}, 1);
    const int field = m_products->layout().indexOf(QStringLiteral("HRKPL"));
    if (found.empty() || field < 0)
        return 0;
    return data::readValue(m_products->layout().field(field),
                           reinterpret_cast<const uchar*>(found.front().bytes.constData()))
        .toDouble();
}

void UndoSignals::label(const UndoTable& table, const QString& product) {
    const double labels = labelsOf(product);
    if (labels <= 0)
        return;
    const data::RecordLayout& layout = table.layout();
    data::TableFile& file = *table.file;
    const auto rows = file.seek(0, data::SeekOp::Equal, {kShelfLabel, product}, kRowsOfProduct);
    for (const data::StoredRecord& row : rows) {
        RecordHold hold(file, row.id);
        hold.require();
        QByteArray record = hold.bytes();
        set(layout, record, "MAARA", labels);
        for (const char* name : kClearedFields) {
            const int field = layout.indexOf(QLatin1String(name));
            if (field >= 0)
                data::clearField(layout.field(field), reinterpret_cast<uchar*>(record.data()));
        }
        if (record != hold.bytes())
            file.update(row.id, record);
    }
    if (!rows.empty())
        return;
    QByteArray record = emptyRecord(layout);
    set(layout, record, "TYYPPI", kShelfLabel);
    set(layout, record, "TUOTE", product);
    set(layout, record, "MAARA", labels);
    file.insert(record);
}

void UndoSignals::mark(const UndoTable& table, const NetChange& change) {
    const data::RecordLayout& layout = table.layout();
    const QString marked = table.keyValue(change.key, 0).toString();
    const QString key = table.keyValue(change.key, 1).toString();
    // a product that the run took off the web shop is added to it again
    const QChar letter =
        letterOf(table, recordAfter(change, layout.recordLength())) == u'P' ? u'L' : u'M';
    const auto rows = table.file->seek(0, data::SeekOp::Equal, {marked, key}, kRowsOfProduct);
    const QChar pending = rows.empty() ? QChar() : letterOf(table, rows.back().bytes);
    const QDateTime now = data::Clock::now();
    QByteArray record = emptyRecord(layout);
    set(layout, record, "TAULU", marked);
    set(layout, record, "TUNNISTE", key);
    set(layout, record, "TYYPPI", QString(resultingWebShopLetter(pending, letter)));
    set(layout, record, "MUUTOSPVM", now.date());
    set(layout, record, "MUUTOSKLO", now.time());
    table.file->insert(record);
    if (!m_logged)
        m_logged = framework::zavIniValue(m_database, QStringLiteral("VERKKOKAUPPA"),
                                          QStringLiteral("Loki")) == u"1";
    if (*m_logged)
        m_ports.webShopLog(webShopLogText(marked, key, letter));
}

}  // namespace vatchange
