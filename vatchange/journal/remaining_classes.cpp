#include "vatchange/journal/remaining_classes.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "vatchange/journal/record_fields.h"
#include "vatchange/rules/order_selection.h"
#include "vatchange/rules/selection.h"

namespace vatchange {

namespace {

using data::TFieldCacheItem;

bool isInSet(const RecordSets& sets, const QString& table, data::RecordId id) {
    const auto found = sets.find(table);
    return found != sets.end() && found->second.contains(id);
}

/// Counts the remaining records of one table.
class TableCount {
  public:
    TableCount(data::Database& database, const QString& table, const RunKnowledge& run,
               Verification& verification, FindingList& findings)
        : m_file(openIfThere(database, table)),
          m_table(table),
          m_run(run),
          m_verification(verification),
          m_findings(findings) {}
    ~TableCount() {
        for (size_t i = 0; i < m_counts.size(); ++i) {
            if (m_counts[i] > 0)
                m_verification.remaining.push_back(
                    {m_table, static_cast<LeftReason>(i), m_counts[i]});
        }
    }
    TableCount(const TableCount&) = delete;
    TableCount& operator=(const TableCount&) = delete;

    data::TableFile* file() const { return m_file.get(); }
    const TFieldCacheItem* field(const char* name) const { return fieldOf(m_file->layout(), name); }

    void add(LeftReason reason, data::RecordId id, const QByteArray& record,
             const TFieldCacheItem& field) {
        ++m_counts[static_cast<size_t>(reason)];
        // what a rule leaves is counted only; what somebody has set back is told field by field
        const bool byRule = reason != LeftReason::PassedOver && reason != LeftReason::OverLimit &&
                            reason != LeftReason::NotFinished && reason != LeftReason::StepFailed &&
                            reason != LeftReason::Unknown;
        const auto found = [&] {
            Finding finding;
            finding.reason = reason;
            finding.table = m_file->layout().tableName();
            finding.record = id;
            finding.key = recordKeyText(*m_file, record, id);
            finding.field = field.name;
            finding.present = textOf(field, record);
            return finding;
        };
        if (byRule)
            m_findings.tellRule(found);
        else
            m_findings.add(FindingKind::LeftBehind, found);
    }

    void tick() { m_findings.tick(); }

    /// Why a record was left that the definition converts.
    LeftReason reasonOf(data::RecordId id) const {
        if (isInSet(m_run.undone, m_table, id))
            return LeftReason::Undone;
        if (isInSet(m_run.converted, m_table, id))
            return LeftReason::ChangedSince;
        if (!m_run.outcome || m_run.outcome->stopped)
            return LeftReason::NotFinished;
        if (m_run.outcome->failedTables.contains(m_table))
            return LeftReason::StepFailed;
        return LeftReason::Unknown;
    }

  private:
    std::unique_ptr<data::TableFile> m_file;
    QString m_table;
    const RunKnowledge& m_run;
    Verification& m_verification;
    FindingList& m_findings;
    std::array<qint64, kLeftReasons> m_counts{};
};

void countProducts(TableCount& count, const RunKnowledge& run) {
    const std::array<const TFieldCacheItem*, 3> classes = {count.field("LVV"), count.field("ALV2"),
                                                           count.field("OSTOVERO")};
    const std::array<const TFieldCacheItem*, 3> groups = {
        count.field("ALIRYHMA"), count.field("RYHMA"), count.field("PAARYHMA")};
    const TFieldCacheItem* number = count.field("NUMERO");
    const auto missing = [](const TFieldCacheItem* field) { return field == nullptr; };
    if (std::any_of(classes.begin(), classes.end(), missing) ||
        std::any_of(groups.begin(), groups.end(), missing) || number == nullptr)
        return;  // the run itself has told it
    const ProductSelection selection(run.definition);
    visitAll(*count.file(), [&](data::RecordId id, const QByteArray& record) {
        count.tick();
        SelectionFields product;
        product.salesClass = integerOf(*classes[0], bytesOf(record));
        product.secondClass = integerOf(*classes[1], bytesOf(record));
        product.purchaseClass = integerOf(*classes[2], bytesOf(record));
        if (!selection.carriesSource(product))
            return;
        product.subGroup = integerOf(*groups[0], bytesOf(record));
        product.productGroup = integerOf(*groups[1], bytesOf(record));
        product.mainGroup = integerOf(*groups[2], bytesOf(record));
        const qint64 source = run.definition.sourceClass;
        const TFieldCacheItem& field = product.salesClass == source    ? *classes[0]
                                       : product.secondClass == source ? *classes[1]
                                                                       : *classes[2];
        LeftReason reason = LeftReason::Restriction;
        if (selection.inGroups(product)) {
            reason = run.definition.products ? count.reasonOf(id) : LeftReason::TableNotChosen;
            const bool waited = reason == LeftReason::NotFinished ||
                                reason == LeftReason::StepFailed || reason == LeftReason::Unknown;
            if (waited && run.overLimit.contains(textOf(*number, record)))
                reason = LeftReason::OverLimit;
            else if (waited && run.outcome &&
                     run.outcome->passedOver.contains(textOf(*number, record)))
                reason = LeftReason::PassedOver;
        }
        count.add(reason, id, record, field);
    });
}

void countGroups(TableCount& count, const RunKnowledge& run) {
    const TFieldCacheItem* number = count.field("NRO");
    if (number == nullptr)
        return;
    const ProductSelection selection(run.definition);
    std::vector<const TFieldCacheItem*> classes;
    for (const char* name : {"VERO", "ALV2", "OSTOVERO"}) {
        if (const TFieldCacheItem* field = count.field(name))
            classes.push_back(field);
    }
    visitAll(*count.file(), [&](data::RecordId id, const QByteArray& record) {
        count.tick();
        for (const TFieldCacheItem* field : classes) {
            if (integerOf(*field, bytesOf(record)) != run.definition.sourceClass)
                continue;
            LeftReason reason = LeftReason::Restriction;
            if (selection.inGroupRange(integerOf(*number, bytesOf(record))))
                reason = run.definition.products ? count.reasonOf(id) : LeftReason::TableNotChosen;
            count.add(reason, id, record, *field);
            return;
        }
    });
}

/// Numbers of open orders, each with the reason to leave all its rows, if there is one.
using OpenOrders = std::unordered_map<qint64, std::optional<LeftReason>>;

OpenOrders openSalesOrders(data::Database& database, const ChangeDefinition& definition) {
    OpenOrders orders;
    const auto file = openIfThere(database, QStringLiteral("MT"));
    if (!file)
        return orders;
    const TFieldCacheItem* number = fieldOf(file->layout(), "NUMERO");
    const TFieldCacheItem* state = fieldOf(file->layout(), "TOIMITUSTILA");
    const TFieldCacheItem* delivery = fieldOf(file->layout(), "TOIMITUSPAIVA");
    const TFieldCacheItem* method = fieldOf(file->layout(), "VELOITUSTAPA");
    if (!number || !state || !delivery || !method)
        return orders;
    visitAll(*file, [&](data::RecordId, const QByteArray& record) {
        if (integerOf(*state, bytesOf(record)) > kLastOpenSalesState)
            return;
        std::optional<LeftReason> reason;
        // a text, as the query compares it: an order without a date is before any limit
        if (definition.salesOrderDeliveryLimit.isValid() &&
            textOf(*delivery, record) < definition.salesOrderDeliveryLimit.toString(Qt::ISODate))
            reason = LeftReason::Restriction;
        else if (isSkippedChargingMethod(integerOf(*method, bytesOf(record))))
            reason = LeftReason::Rule;
        orders.emplace(integerOf(*number, bytesOf(record)), reason);
    });
    return orders;
}

OpenOrders openPurchaseOrders(data::Database& database) {
    OpenOrders orders;
    const auto file = openIfThere(database, QStringLiteral("WINOT"));
    if (!file)
        return orders;
    const TFieldCacheItem* number = fieldOf(file->layout(), "TILAUSNRO");
    const TFieldCacheItem* state = fieldOf(file->layout(), "TILA");
    if (!number || !state)
        return orders;
    visitAll(*file, [&](data::RecordId, const QByteArray& record) {
        if (integerOf(*state, bytesOf(record)) <= kLastOpenPurchaseState)
            orders.emplace(integerOf(*number, bytesOf(record)), std::nullopt);
    });
    return orders;
}

/// The fields that decide about an order row. `second` may carry the source class without being
/// converted for its own sake.
struct RowFields {
    const TFieldCacheItem* order;
    const TFieldCacheItem* vatClass;
    const TFieldCacheItem* open;  ///< quantity still to deliver
    const TFieldCacheItem* second;
};

void countRows(TableCount& count, const RowFields& fields, const OpenOrders& orders,
               const RunKnowledge& run, bool chosen) {
    if (orders.empty() || !fields.order || !fields.vatClass || !fields.open)
        return;
    const qint64 source = run.definition.sourceClass;
    visitAll(*count.file(), [&](data::RecordId id, const QByteArray& record) {
        count.tick();
        const uchar* bytes = bytesOf(record);
        const bool first = integerOf(*fields.vatClass, bytes) == source;
        if (!first && (!fields.second || integerOf(*fields.second, bytes) != source))
            return;
        const auto order = orders.find(integerOf(*fields.order, bytes));
        if (order == orders.end())
            return;
        LeftReason reason = LeftReason::Rule;
        if (!chosen)
            reason = LeftReason::TableNotChosen;
        else if (order->second)
            reason = *order->second;
        else if (first && amountOf(*fields.open, bytes) != 0)
            reason = count.reasonOf(id);
        count.add(reason, id, record, first ? *fields.vatClass : *fields.second);
    });
}

}  // namespace

void countRemaining(data::Database& database, const RunKnowledge& run, Verification& verification,
                    FindingList& findings) {
    {
        TableCount products(database, QStringLiteral("TUOTE"), run, verification, findings);
        if (products.file())
            countProducts(products, run);
    }
    {
        TableCount groups(database, QStringLiteral("TRYHMA"), run, verification, findings);
        if (groups.file())
            countGroups(groups, run);
    }
    {
        TableCount rows(database, QStringLiteral("MTRIVI"), run, verification, findings);
        if (rows.file())
            countRows(rows,
                      {rows.field("TILAUSNRO"), rows.field("VEROKANTA"), rows.field("TOIMITETTAVA"),
                       rows.field("OSTOVERO")},
                      openSalesOrders(database, run.definition), run, run.definition.salesOrders);
    }
    TableCount rows(database, QStringLiteral("WINOTRI"), run, verification, findings);
    if (rows.file())
        countRows(
            rows,
            {rows.field("TILAUSNRO"), rows.field("ALVLUOKKA"), rows.field("TULEMATTA"), nullptr},
            openPurchaseOrders(database), run, run.definition.purchaseOrders);
}

}  // namespace vatchange
