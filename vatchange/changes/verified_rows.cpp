#include "vatchange/changes/verified_rows.h"

#include "vatchange/changes/changed_fields.h"
#include "vatchange/journal/record_fields.h"
#include "vatchange/journal/verification_text.h"

namespace vatchange {

namespace {

/// A table of which verification has found something.
struct FoundTable {
    std::unique_ptr<data::TableFile> file;
    int listTable = 0;
    const data::TFieldCacheItem* number = nullptr;  // of the product
    std::unique_ptr<OrderRows> orders;              // of order rows
};

class Findings {
  public:
    Findings(data::Database& database, RunReader& reader, ChangeList& list)
        : m_database(database), m_reader(reader), m_list(list) {}

    void see(const Finding& finding) {
        switch (finding.kind) {
            case FindingKind::LeftBehind:
                leftBehind(finding);
                break;
            case FindingKind::Gone:
                markRecord(finding, QStringLiteral("poistettu ajon jälkeen"));
                break;
            case FindingKind::Returned:
                markRecord(finding, QStringLiteral("on taas olemassa"));
                break;
            case FindingKind::ChangedSince: {
                const int row = unchangedRow(finding, finding.after);
                m_list.mark(row, ChangeFinding::ChangedSince,
                            QStringLiteral("muutettu ajon jälkeen: nyt ") + shown(finding.present));
                break;
            }
            case FindingKind::EmptyVat0:
                m_list.mark(unchangedRow(finding, finding.after), ChangeFinding::NotPositive,
                            QStringLiteral("veroton hinta tyhjä"));
                break;
            case FindingKind::NotPositive:
                m_list.mark(unchangedRow(finding, finding.after), ChangeFinding::NotPositive);
                break;
            case FindingKind::PriceUnchanged:
                m_list.mark(unchangedRow(finding, finding.present), ChangeFinding::PriceUnchanged,
                            QStringLiteral("hinta ennallaan: ") + causeFinnish(finding.cause));
                break;
            case FindingKind::OtherThanRehearsed:
                otherThanRehearsed(finding);
                break;
        }
    }

  private:
    static QString shown(const QString& value) {
        QString text = value.isEmpty() ? QStringLiteral("tyhjä") : value;
        return text.replace(u'.', u',');
    }

    FoundTable& table(const QString& name) {
        FoundTable& table = m_tables[name];
        if (!table.file) {
            table.file = m_database.openTable(name);
            table.listTable = m_list.addTable(name);
            const bool products = name.compare(QStringLiteral("TUOTE"), Qt::CaseInsensitive) == 0;
            table.number = fieldOf(table.file->layout(), products ? "NUMERO" : "Tuote");
            if (OrderRows::isRowTable(name))
                table.orders = std::make_unique<OrderRows>(m_database, name);
        }
        return table;
    }

    /// The list's record of a finding; added if the run did not change it.
    int recordOf(const Finding& finding, const QByteArray* bytes) {
        const int known = m_reader.recordOf(finding.table, finding.record);
        if (known >= 0)
            return known;
        FoundTable& found = table(finding.table);
        const QString number =
            bytes == nullptr || found.number == nullptr ? QString() : textOf(*found.number, *bytes);
        return m_list.addRecord({m_reader.place(), found.listTable, finding.record,
                                 m_reader.product(number), finding.key},
                                false);
    }

    int fieldOfFinding(const Finding& finding) {
        const data::RecordLayout& layout = table(finding.table).file->layout();
        const int index = layout.indexOf(finding.field);
        ChangedField whole;
        whole.table = finding.table;
        return m_list.addField(index < 0 ? whole
                                         : describeField(finding.table, layout.field(index)));
    }

    /// The row of a finding's field, or a new one with the value that the field has kept.
    int unchangedRow(const Finding& finding, const QString& value,
                     const QByteArray* bytes = nullptr) {
        const int record = recordOf(finding, bytes);
        const int field = fieldOfFinding(finding);
        const int row = m_reader.rowOf(record, field);
        if (row >= 0)
            return row;
        const double stored = m_list.fields()[static_cast<size_t>(field)].number
                                  ? value.toDouble()
                                  : m_list.textValue(value);
        return m_list.addRow(record, field, ChangeKind::Unchanged, stored, stored);
    }

    void markRecord(const Finding& finding, const QString& reason) {
        const int record = recordOf(finding, nullptr);
        int row = m_reader.firstRow(record);
        if (row < 0)
            row = m_list.addRow(record, fieldOfFinding(finding), ChangeKind::Unchanged, 0, 0);
        m_list.mark(row, ChangeFinding::ChangedSince, reason);
    }

    void leftBehind(const Finding& finding) {
        FoundTable& found = table(finding.table);
        const std::optional<data::StoredRecord> record = found.file->get(finding.record);
        const QByteArray* bytes = record ? &record->bytes : nullptr;
        const int row = unchangedRow(finding, finding.present, bytes);
        QString reason = QStringLiteral("vanha alv-luokka jäi: ") + reasonFinnish(finding.reason);
        if (found.orders && bytes != nullptr) {
            const QString passedOver = found.orders->passedOver(finding.reason, *bytes);
            if (!passedOver.isEmpty()) {
                reason = passedOver;
                m_list.mark(row, ChangeFinding::OrderPassedOver);
            }
        } else if (found.listTable == m_list.addTable(QStringLiteral("TUOTE")) &&
                   isPassedOver(finding.reason)) {
            m_list.mark(row, ChangeFinding::ProductPassedOver);
        }
        m_list.mark(row, ChangeFinding::LeftBehind, reason);
    }

    void otherThanRehearsed(const Finding& finding) {
        const RehearsalDifference rehearsed = finding.rehearsed.value_or(RehearsalDifference());
        const QString reason =
            rehearsed.kind == RehearsalDifference::Kind::OnlyMade
                ? QStringLiteral("koeajo ei muuttanut")
                : QStringLiteral("koeajossa %1 -> %2")
                      .arg(shown(rehearsed.rehearsedBefore), shown(rehearsed.rehearsedAfter));
        m_list.mark(unchangedRow(finding, rehearsed.rehearsedBefore),
                    ChangeFinding::OtherThanRehearsed, reason);
    }

    /// The run came to the product and left it.
    static bool isPassedOver(LeftReason reason) {
        return reason != LeftReason::Restriction && reason != LeftReason::TableNotChosen &&
               reason != LeftReason::Rule && reason != LeftReason::NotFinished &&
               reason != LeftReason::ChangedSince && reason != LeftReason::Undone;
    }

    data::Database& m_database;
    RunReader& m_reader;
    ChangeList& m_list;
    std::map<QString, FoundTable> m_tables;
};

}  // namespace

void addVerification(data::Database& database, RunReader& reader, ChangeList& list) {
    Findings findings(database, reader, list);
    VerifyOptions options;
    options.listed = 0;
    options.seeRules = true;
    options.see = [&findings](const Finding& finding) { findings.see(finding); };
    verifyRun(database, reader.run(), options);
}

}  // namespace vatchange
