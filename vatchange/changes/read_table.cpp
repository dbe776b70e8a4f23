#include "vatchange/changes/read_table.h"

#include <cstring>

#include "vatchange/changes/changed_fields.h"
#include "vatchange/journal/ignored_changes.h"
#include "vatchange/journal/record_fields.h"

namespace vatchange {

namespace {

bool isTable(const QString& name, const QString& other) {
    return name.compare(other, Qt::CaseInsensitive) == 0;
}

bool sameBytes(const data::TFieldCacheItem& field, const QByteArray& one, const QByteArray& other) {
    if (field.storage == data::Storage::Bit)
        return ((one[field.offset] ^ other[field.offset]) & field.mask) == 0;
    return std::memcmp(one.constData() + field.offset, other.constData() + field.offset,
                       field.storedLength) == 0;
}

void put(const data::JournalEntry& entry, int offset, const QByteArray& bytes, QByteArray& record) {
    if (offset < 0 || offset + bytes.size() > record.size())
        throw data::DataError(data::ErrorKind::Damaged, QStringLiteral("run journal"),
                              QStringLiteral("entry %1 is longer than its record").arg(entry.seq))
            .inFinnish(QStringLiteral("ajopäiväkirjan merkintä %1 on vioittunut").arg(entry.seq));
    std::memcpy(record.data() + offset, bytes.constData(), static_cast<size_t>(bytes.size()));
}

double amountIn(const data::TFieldCacheItem* field, const QByteArray& record) {
    return field == nullptr ? 0.0 : amountOf(*field, bytesOf(record));
}

}  // namespace

ReadTable::ReadTable(UndoTable& table, ChangeList& list, const ChangeList::Run& run)
    : m_table(table),
      m_list(list),
      m_run(run),
      m_listTable(list.addTable(table.stored.name)),
      m_products(isTable(table.stored.name, QStringLiteral("TUOTE"))) {
    const QString& name = table.stored.name;
    const data::RecordLayout& layout = table.layout();
    ChangedField whole;
    whole.table = name;
    m_whole = list.addField(whole);
    m_before.fill('\0', layout.recordLength());
    m_after.fill('\0', layout.recordLength());
    m_startsAt.resize(static_cast<size_t>(layout.recordLength()));
    std::vector<bool> flags(m_startsAt.size(), false);
    for (const Field& item : layout.fields()) {
        if (item.storage == data::Storage::Bit)
            flags[item.offset] = true;
    }
    for (const Field& item : layout.fields()) {
        // a byte of flags is shown flag by flag
        const bool byteOfFlags =
            item.storage != data::Storage::Bit && item.storedLength == 1 && flags[item.offset];
        m_startsAt[item.offset].push_back(static_cast<quint16>(m_places.size()));
        m_places.push_back({&item, kUnlisted, byteOfFlags || isChangeDate(name, item.name)});
    }
    m_number = fieldOf(layout, m_products                     ? "NUMERO"
                               : isTable(name, kWebShopTable) ? "Tunniste"
                                                              : "Tuote");
    if (m_number != nullptr && !table.file->keys().empty()) {
        const auto& segments = table.file->keys().front().segments;
        for (size_t i = 0; i < segments.size(); ++i) {
            if (&layout.field(segments[i].fieldIndex) == m_number)
                m_numberInKey = static_cast<int>(i);
        }
    }
    m_class = fieldOf(layout, m_products                              ? "LVV"
                              : isTable(name, kSalesOrderTables.rows) ? "Verokanta"
                                                                      : "AlvLuokka");
    if (!m_products)
        return;
    for (size_t i = 0; i < m_levels.size(); ++i)
        m_levels[i] = fieldOf(layout, kPriceColumns[i + 1].toLatin1().constData());
    m_average = fieldOf(layout, "KESKIHINTA");
    m_last = fieldOf(layout, "VIIMOSTOHINTA");
}

int ReadTable::listFieldOf(Place& place) {
    if (place.listField == kUnlisted) {
        const ChangedField field = describeField(m_table.stored.name, *place.item);
        place.listField = m_list.addField(field);
        m_items[place.listField] = place.item;
        m_expected[place.listField] = m_run.definition
                                          ? ExpectedChange(*m_run.definition, m_run.rates, field)
                                          : ExpectedChange();
    }
    return place.listField;
}

int ReadTable::listField(const QString& name) {
    const int index = m_table.layout().indexOf(name);
    return index < 0 ? -1 : listFieldOf(m_places[static_cast<size_t>(index)]);
}

const ReadTable::Field* ReadTable::itemOf(int listField) const {
    const auto found = m_items.find(listField);
    return found == m_items.end() ? nullptr : found->second;
}

double ReadTable::stored(const Field& item, const QByteArray& record) {
    if (item.kind() == data::Kind::Float)
        return data::readFloat(item, bytesOf(record));
    if (isInteger(item))
        return static_cast<double>(data::readInteger(item, bytesOf(record)));
    return m_list.textValue(textOf(item, record));
}

double ReadTable::valueIn(int listField, const QByteArray& record) {
    const Field* item = itemOf(listField);
    return item == nullptr ? 0.0 : stored(*item, record);
}

const std::vector<ReadTable::Value>& ReadTable::changedFields(const data::JournalEntry& entry) {
    m_values.clear();
    for (const data::ByteChange& change : entry.changes) {
        put(entry, change.offset, change.before, m_before);
        put(entry, change.offset, change.after, m_after);
    }
    for (const data::ByteChange& change : entry.changes) {
        for (qsizetype byte = change.offset; byte < change.offset + change.after.size(); ++byte) {
            for (const quint16 index : m_startsAt[static_cast<size_t>(byte)]) {
                Place& place = m_places[index];
                if (place.ignored || sameBytes(*place.item, m_before, m_after))
                    continue;
                const double before = stored(*place.item, m_before);
                const double after = stored(*place.item, m_after);
                if (before != after)  // other bytes may mean the same
                    m_values.push_back({listFieldOf(place), before, after});
            }
        }
    }
    return m_values;
}

QString ReadTable::productByKey(const QByteArray& key) const {
    return m_numberInKey < 0 ? QString() : m_table.keyValue(key, m_numberInKey).toString();
}

QString ReadTable::productIn(const QByteArray& record) const {
    return m_number == nullptr ? QString() : textOf(*m_number, record);
}

ProductPrices ReadTable::prices(const QByteArray& record) const {
    ProductPrices prices;
    for (size_t i = 0; i < m_levels.size(); ++i)
        prices.levels[i] = amountIn(m_levels[i], record);
    prices.averagePurchase = amountIn(m_average, record);
    prices.lastPurchase = amountIn(m_last, record);
    return prices;
}

}  // namespace vatchange
