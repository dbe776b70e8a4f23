#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <unordered_map>
#include <vector>

#include "data/engine/run_journal.h"
#include "vatchange/changes/change_finding.h"
#include "vatchange/definition/change_definition.h"
#include "vatchange/journal/run_notes.h"

namespace vatchange {

/// A field of a changed table, as the list knows it.
struct ChangedField {
    QString table;  ///< as the catalogue writes it
    QString field;  ///< as the catalogue writes it; empty for a whole record
    QString title;  ///< in windows: "Taso 3", "Alv-luokka"
    int level = 0;  ///< price level 1..9 of a sales price with VAT; 0: none
    bool number = false;
    bool amount = false;  ///< a number with decimals: a price, a sum
    bool single = false;  ///< of single precision
    bool price = false;   ///< a sales price with VAT that customers see: pictures count it
    bool sold = false;    ///< somebody is charged it: 0 or less is a finding
};

enum class ChangeKind : quint8 {
    Field,     ///< a field got another value
    Inserted,  ///< the run inserted the record: one row without values
    Deleted,
    Unchanged  ///< not changed; the row is there for its findings
};

/// The changes of one or more runs as rows, a row for each changed field of a record with its value
/// from before the run and what the run left, in the order of the run; after them rows for what was
/// not changed and deserves a look. Dates and times of change are left out.
///
/// Columns of plain numbers and each text once: about 40 bytes a row. Needs no database once it is
/// filled.
class ChangeList {
  public:
    struct Run {
        data::JournalRun head;
        std::optional<ChangeDefinition> definition = {};  ///< none of an undo
        VatRates rates = {};  ///< of the run's beginning; empty if they are not known
    };
    struct Record {
        int run = 0;    ///< index into runs()
        int table = 0;  ///< index into tables()
        data::RecordId id = 0;
        int product = -1;  ///< index into the products; -1: none
        QString key;       ///< the fields of key 0, joined by a blank
    };

    // --- reading; rows count from 0
    int rowCount() const { return static_cast<int>(m_rowRecord.size()); }
    int recordCount() const { return static_cast<int>(m_recordId.size()); }
    const std::vector<Run>& runs() const { return m_runs; }
    const QStringList& tables() const { return m_tables; }
    const std::vector<ChangedField>& fields() const { return m_fields; }
    int productCount() const { return static_cast<int>(m_products.size()); }
    const QString& productNumber(int product) const { return m_products[at(product)].number; }
    const QString& productName(int product) const { return m_products[at(product)].name; }

    ChangeKind kind(int row) const { return m_rowKind[at(row)]; }
    int fieldIndex(int row) const { return m_rowField[at(row)]; }
    const ChangedField& field(int row) const { return m_fields[m_rowField[at(row)]]; }
    int recordIndex(int row) const { return static_cast<int>(m_rowRecord[at(row)]); }
    int tableOf(int row) const { return m_recordTable[m_rowRecord[at(row)]]; }
    int productOf(int row) const { return m_recordProduct[m_rowRecord[at(row)]]; }
    Record record(int record) const;
    /// Number (`field().number`) before and after.
    double before(int row) const { return m_before[at(row)]; }
    double after(int row) const { return m_after[at(row)]; }
    /// The value as in an export (valueToText); empty where there is none.
    QString beforeText(int row) const { return text(row, m_before[at(row)]); }
    QString afterText(int row) const { return text(row, m_after[at(row)]); }
    /// Of a changed amount.
    std::optional<double> difference(int row) const;
    /// Change in percent of the value before; of an amount above 0.
    std::optional<double> percent(int row) const;

    FindingSet findings(int row) const { return m_rowFindings[at(row)]; }
    /// The findings in words with their reasons, joined by "; "; empty if their names say all.
    const QString& reason(int row) const { return m_texts[m_rowReason[at(row)]]; }
    qint64 findingCount(ChangeFinding finding) const {
        return m_findingCounts[static_cast<size_t>(finding)];
    }
    /// A row that shows nothing: its field was changed and changed back.
    bool isVoid(int row) const {
        return kind(row) == ChangeKind::Field && before(row) == after(row) && findings(row) == 0;
    }
    /// The records' tables, each with its number of changed records.
    qint64 changedRecords(int table) const { return m_changedRecords[at(table)]; }

    // --- filling
    ChangeList();
    int addRun(Run run);
    int addTable(const QString& name);
    int addField(ChangedField field);
    /// The product of a number, added if it is new (`*added`).
    int addProduct(const QString& number, bool* added = nullptr);
    void setProductName(int product, const QString& name) { m_products[at(product)].name = name; }
    int addRecord(const Record& record, bool changed);
    int addRow(int record, int field, ChangeKind kind, double before, double after);
    /// A text as a row's value.
    double textValue(const QString& text) { return intern(text); }
    void setAfter(int row, double after) { m_after[at(row)] = after; }
    void mark(int row, ChangeFinding finding, const QString& reason = {});
    /// Takes a finding without a reason off a row.
    void unmark(int row, ChangeFinding finding);

  private:
    static size_t at(int index) { return static_cast<size_t>(index); }
    QString text(int row, double value) const;
    quint32 intern(const QString& text);

    struct Product {
        QString number;
        QString name;
    };
    std::vector<Run> m_runs;
    QStringList m_tables;
    std::vector<qint64> m_changedRecords;  // by table
    std::vector<ChangedField> m_fields;
    std::vector<Product> m_products;
    std::unordered_map<QString, int> m_productPlaces;
    std::vector<QString> m_texts;  // the first is empty
    std::unordered_map<QString, quint32> m_textPlaces;

    std::vector<quint8> m_recordRun;
    std::vector<quint8> m_recordTable;
    std::vector<qint64> m_recordId;
    std::vector<qint32> m_recordProduct;
    std::vector<quint32> m_recordKey;  // where its key begins in m_keys
    QByteArray m_keys;                 // UTF-8

    std::vector<quint32> m_rowRecord;
    std::vector<quint16> m_rowField;
    std::vector<ChangeKind> m_rowKind;
    std::vector<FindingSet> m_rowFindings;
    std::vector<quint32> m_rowReason;  // into m_texts
    std::vector<double> m_before;      // a text's number for a field that is no number
    std::vector<double> m_after;
    qint64 m_findingCounts[kChangeFindings] = {};
};

}  // namespace vatchange
