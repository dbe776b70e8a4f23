#include "vatchange/form/product_count.h"

#include <QElapsedTimer>

#include "data/record/record_codec.h"

namespace vatchange {

namespace {

const QString kTable = QStringLiteral("TUOTE");
constexpr qint64 kSliceMs = 8;
constexpr int kRecords = 250;  // read at a time

}  // namespace

ProductCount::ProductCount(data::Database& database, QObject* parent)
    : QObject(parent), m_database(database) {
    m_next.setInterval(0);
    connect(&m_next, &QTimer::timeout, this, &ProductCount::countSlice);
}

void ProductCount::start(const ChangeDefinition& definition) {
    const QString condition = selectionCondition(definition);
    if (condition == m_condition)
        return;
    stop();
    m_condition = condition;
    m_selection.emplace(definition);
    m_next.start();
}

void ProductCount::stop() {
    m_next.stop();
    m_file.reset();
    m_condition.clear();
    m_products.reset();
    m_last.reset();
    m_selected = 0;
}

void ProductCount::open() {
    m_file = m_database.openTable(kTable);
    std::size_t place = 0;
    for (const char* name : {"AliRyhma", "Ryhma", "PaaRyhma", "LVV", "ALV2", "OSTOVERO"}) {
        const int index = m_file->layout().indexOf(QLatin1String(name));
        if (index < 0)
            throw data::DataError(data::ErrorKind::NoSuchField, kTable, QLatin1String(name));
        m_fields[place++] = index;
    }
}

void ProductCount::countSlice() {
    QElapsedTimer time;
    time.start();
    try {
        if (!m_file)
            open();
        while (countRecords()) {
            if (time.elapsed() >= kSliceMs)
                return;
        }
    } catch (const std::exception& error) {
        m_next.stop();
        m_file.reset();
        Q_EMIT failed(data::errorText(error));
        return;
    }
    m_next.stop();
    m_file.reset();
    m_products = m_selected;
    Q_EMIT counted(m_selected);
}

// Returns false after the last record.
bool ProductCount::countRecords() {
    const data::RecordLayout& layout = m_file->layout();
    int seen = 0;
    const auto last =
        m_file->visitStored(m_last, kRecords, [&](data::RecordId, const QByteArray& record) {
            ++seen;
            const auto* bytes = reinterpret_cast<const uchar*>(record.constData());
            const auto field = [&](std::size_t place) {
                return data::readValue(layout.field(m_fields[place]), bytes).toLongLong();
            };
            SelectionFields product;
            product.salesClass = field(3);
            product.secondClass = field(4);
            product.purchaseClass = field(5);
            if (!m_selection->carriesSource(product))
                return true;
            product.subGroup = field(0);
            product.productGroup = field(1);
            product.mainGroup = field(2);
            if (m_selection->inGroups(product))
                ++m_selected;
            return true;
        });
    m_last = last;
    return last && seen == kRecords;
}

}  // namespace vatchange
