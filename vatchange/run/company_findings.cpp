#include "vatchange/run/company_findings.h"

#include <QFileInfo>
#include <QStorageInfo>
#include <algorithm>

#include "company/company.h"
#include "data/sql/uni_query.h"
#include "vatchange/definition/restrictions.h"
#include "vatchange/journal/earlier_runs.h"
#include "vatchange/orders/order_rules.h"
#include "vatchange/rules/count_queries.h"
#include "vatchange/rules/order_selection.h"
#include "vatchange/rules/selection.h"
#include "vatchange/rules/statements.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

namespace {

using Kind = DefinitionFindingKind;

// What a run writes, in bytes, generously: journal entries and the write-ahead log before it is
// checkpointed.
constexpr qint64 kBaseRoom = 32 << 20;
constexpr qint64 kJournalOfProduct = 600;
constexpr qint64 kLogOfProduct = 600;  // nine levels
constexpr qint64 kRoomOfRow = 400;     // of a dependent table or an open order, with its log line

qint64 countOf(data::Database& database, const QString& statement) {
    data::TUniQuery query(&database);
    query.sql().add(statement);
    query.open();
    return query.fieldByName(QStringLiteral("rows_found")).asInteger();
}

/// Result of `read`; nothing if it throws: the step that needs the table reports it.
template <typename Read>
auto known(Read&& read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

qint64 records(data::Database& database, const char* table) {
    return known([&] { return database.openTable(QLatin1String(table))->recordCount(); })
        .value_or(0);
}

/// The charging methods whose sales orders keep their prices.
QString keptMethods() {
    QStringList methods;
    for (qint64 method = 0; method <= kLastChargingMethod; ++method) {
        if (OnHintaVeloitustapa(method) || isSkippedChargingMethod(method))
            methods += QString::number(method);
    }
    return methods.join(u',');
}

QString megabytes(qint64 bytes) {
    return QString::number((bytes + (1 << 20) - 1) >> 20);
}

std::set<int> customerGroups(data::Database& database) {
    data::TUniQuery query(&database);
    query.sql().add(QStringLiteral("SELECT NRO FROM ASRYHMA"));
    query.open();
    std::set<int> groups;
    const auto& number = query.fieldByName(QStringLiteral("NRO"));
    for (; !query.eof(); query.next())
        groups.insert(static_cast<int>(number.asInteger()));
    return groups;
}

/// Collects the findings about a definition in one company.
class CompanyFindings {
  public:
    CompanyFindings(data::Database& database, const ChangeDefinition& definition,
                    const CompanyFindingOptions& options)
        : m_database(database), m_definition(definition), m_options(options) {}

    std::vector<DefinitionFinding> all() {
        for (const auto part : {&CompanyFindings::ofEarlierRuns, &CompanyFindings::ofLabels,
                                &CompanyFindings::ofSelection, &CompanyFindings::ofRoom,
                                &CompanyFindings::ofStorePrices, &CompanyFindings::ofOrders}) {
            if (m_options.stop && m_options.stop())
                break;
            (this->*part)();
        }
        return std::move(m_findings);
    }

  private:
    void add(Kind kind, const QString& control, const QString& text) {
        const QString value =
            control.isEmpty() ? QString() : fieldText(changeField(control), m_definition);
        m_findings.push_back({kind, control, value, text});
    }

    void ofEarlierRuns() {
        data::RunJournal* journal = m_database.journal();
        if (journal == nullptr || !m_definition.changesDependents())
            return;
        try {
            const std::vector<EarlierRun> earlier = earlierRuns(*journal, m_options.exceptRun);
            for (const EarlierChange& rows : earlierRunsOfSameRows(m_definition, earlier))
                add(Kind::ChangedEarlier, {}, earlierChangeText(rows));
        } catch (const std::exception& error) {
            // a damaged journal of another run is no reason not to go on
            add(Kind::ChangedEarlier, {},
                QStringLiteral("aiempia ajoja ei voi lukea: ") + errorText(error));
        }
    }

    void ofLabels() {
        if (!m_definition.products || !m_definition.writeShelfLabels)
            return;
        try {
            findLabelTable(m_database);
        } catch (const data::DataError&) {
            add(Kind::NoLabelTable, QStringLiteral("VieHr"),
                QStringLiteral("hyllynreunaetikettien taulua HR ei voi lukea, tuotteet muutetaan "
                               "ilman etikettejä"));
        }
    }

    void ofSelection() {
        if (products() != 0 || m_options.resumed)
            return;
        add(Kind::SelectsNothing, kSourceClassControl,
            isRestricted(m_definition)
                ? QStringLiteral("rajaukset eivät valitse yhtään tuotetta, jolla on luokka %1")
                      .arg(m_definition.sourceClass)
                : QStringLiteral("yhdelläkään tuotteella ei ole luokkaa %1")
                      .arg(m_definition.sourceClass));
    }

    /// Nothing if they cannot be counted.
    std::optional<qint64> products() {
        if (!m_products)
            m_products = known([this] { return selectedProducts(m_database, m_definition); });
        return m_products;
    }

    void ofRoom() {
        const ChangeDefinition& d = m_definition;
        qint64 need = kBaseRoom;
        if (d.products)
            need +=
                products().value_or(0) * (kJournalOfProduct + (d.productLog ? kLogOfProduct : 0));
        const std::pair<bool, const char*> tables[] = {{d.customerPriceLists, "ASALE"},
                                                       {d.campaigns, "KAMPPANJA"},
                                                       {d.recurringInvoicing, "VAKIOLASKUTUS"},
                                                       {d.quantityDiscounts, "MAARAALE"},
                                                       {d.products, "MYYMALAHINNAT"},
                                                       {d.salesOrders, "MTRIVI"},
                                                       {d.purchaseOrders, "WINOTRI"}};
        for (const auto& [chosen, table] : tables)
            need += chosen ? kRoomOfRow * records(m_database, table) : 0;
        const QString folder =
            QFileInfo(company::dataFolderFile(QStringLiteral("ALVMUUTOS.LOG"))).absolutePath();
        const qint64 free =
            m_options.freeBytes >= 0 ? m_options.freeBytes : QStorageInfo(folder).bytesAvailable();
        if (free < 0 || free >= need)
            return;
        add(Kind::LittleRoom, {},
            QStringLiteral("levyllä on tilaa %1 Mt, ajopäiväkirja ja loki voivat tarvita %2 Mt")
                .arg(megabytes(free), megabytes(need)));
    }

    void ofStorePrices() {
        QStringList emptied;
        for (int level = 1; m_definition.products && level <= kPriceLevels; ++level) {
            const PriceLevelChange& change =
                m_definition.levels[static_cast<std::size_t>(level - 1)];
            if (change.keepVat0 && isPriceColumn(change.source))
                emptied +=
                    QStringLiteral("(myymalahinnat.hinta%1alv0 = 0 and myymalahinnat.hinta%1 > 0)")
                        .arg(level);
        }
        if (emptied.isEmpty())
            return;
        addEmptied(QStringLiteral("myymälähintaa"), {},
                   QStringLiteral("select count(*) as rows_found from myymalahinnat, tuote where "
                                  "numero=tuote and lvv= %1 and (%2)")
                       .arg(m_definition.sourceClass)
                       .arg(emptied.join(QStringLiteral(" or "))));
    }

    void ofOrders() {
        if (m_definition.salesOrders && m_definition.salesOrderFromVat0)
            addEmptied(
                QStringLiteral("myyntitilauksen riviä"), QStringLiteral("SailytaAlv0_CheckBoxMT"),
                QStringLiteral("select count(*) as rows_found from mtrivi where verokanta = %1 and "
                               "toimitettava <> 0 and ahintaalv0 = 0 and ahinta > 0 and tilausnro "
                               "in (select numero from mt where toimitustila <= %2 and "
                               "veloitustapa not in (%3))")
                    .arg(m_definition.sourceClass)
                    .arg(kLastOpenSalesState)
                    .arg(keptMethods()));
        if (m_definition.purchaseOrders && m_definition.purchaseOrderFromVat0)
            addEmptied(QStringLiteral("ostotilauksen riviä"),
                       QStringLiteral("SailytaAlv0_CheckBoxOT"),
                       QStringLiteral(
                           "select count(*) as rows_found from winotri where alvluokka = %1 and "
                           "tulematta <> 0 and ostohintaalv0 = 0 and ostohinta > 0 and "
                           "tilausnro in (select tilausnro from winot where tila <= %2)")
                           .arg(m_definition.sourceClass)
                           .arg(kLastOpenPurchaseState));
    }

    void addEmptied(const QString& what, const QString& control, const QString& statement) {
        if (m_options.resumed)
            return;
        const qint64 rows = known([&] { return countOf(m_database, statement); }).value_or(0);
        if (rows > 0)
            add(Kind::EmptyVat0, control,
                QStringLiteral("%1 %2 on vailla alv0-hintaa: hinta, joka lasketaan siitä, tulee "
                               "nollaksi")
                    .arg(rows)
                    .arg(what));
    }

    data::Database& m_database;
    const ChangeDefinition& m_definition;
    const CompanyFindingOptions& m_options;
    std::optional<qint64> m_products = m_options.products;
    std::vector<DefinitionFinding> m_findings;
};

}  // namespace

CompanyFacts readCompanyFacts(data::Database& database, const ChangeDefinition& definition) {
    CompanyFacts facts;
    if (const auto classes = known([&] { return VatClasses::read(database); })) {
        facts.vatClasses = classes->numbers();
        for (const int vatClass : *facts.vatClasses)
            facts.vatRates.emplace(vatClass, classes->ratePercent(vatClass));
    }
    if (!definition.customerGroups.empty())
        facts.customerGroups = known([&] { return customerGroups(database); });
    return facts;
}

qint64 selectedProducts(data::Database& database, const ChangeDefinition& definition) {
    return countOf(database, countQuery(productQuery(selectionCondition(definition))));
}

std::vector<DefinitionFinding> companyFindings(data::Database& database,
                                               const ChangeDefinition& definition,
                                               const CompanyFindingOptions& options) {
    return CompanyFindings(database, definition, options).all();
}

}  // namespace vatchange
