#pragma once

#include <QByteArray>
#include <QString>
#include <map>

#include "data/engine/run_journal.h"
#include "data/journal/id_set.h"

namespace vatchange {

// Marks that a run writes between its changes, beside those of finished orders.

inline const QByteArray kProductsStep = QByteArrayLiteral("step products");
/// The same without a label table that can be read: its products lack their labels.
inline const QByteArray kProductsStepWithoutLabels =
    QByteArrayLiteral("step products without labels");
inline const QByteArray kProductsEnd = QByteArrayLiteral("end products");
inline const QByteArray kCodesStep = QByteArrayLiteral("step codes");
inline const QByteArray kCodesEnd = QByteArrayLiteral("end codes");
/// A product's web shop mark or label failed. `product`: its record id.
QByteArray unmarkedText(qint64 product);
QByteArray unlabelledText(qint64 product);

/// What a run has done so far, from its journal: what a resumed run must not do again, and what
/// belongs to a product but is missing.
///
/// Origins: the entries of a table with a list of rows carry the row's position; those of the
/// products step and of the product code check the product's record id, also for the product's
/// label and web shop mark.
class RunProgress {
  public:
    /// @throws data::DataError.
    static RunProgress read(data::RunJournal& journal, qint64 run);

    /// Positions of a table's list that have been changed. Names of tables in capitals.
    const data::IdSet& positions(const QString& table) const;
    /// Records of a table that have been changed.
    const data::IdSet& records(const QString& table) const;

    data::IdSet products;       ///< converted, by record id
    data::IdSet unmarked;       ///< of them those without their web shop mark
    data::IdSet unlabelled;     ///< of them those without their label
    data::IdSet unmarkedCodes;  ///< taken off the web shop without the mark that tells it
    data::IdSet marginMarks;    ///< sales order rows whose margin mark was set last, by record id
    /// Numbers of the finished orders. `table`: of the headers.
    const data::IdSet& orders(const QString& table) const;

  private:
    struct Table {
        data::IdSet positions;
        data::IdSet records;
    };
    std::map<QString, Table> m_tables;
    std::map<QString, data::IdSet> m_orders;
};

}  // namespace vatchange
