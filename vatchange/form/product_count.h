#pragma once

#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>

#include "data/engine/engine.h"
#include "vatchange/rules/selection.h"

namespace vatchange {

/// Counts the products that a definition selects, record by record in slices of a few milliseconds
/// between events: nothing waits for it, and it can be stopped at any time. An SQL count would hold
/// up the window for a second with a million products.
class ProductCount : public QObject {
    Q_OBJECT
  public:
    explicit ProductCount(data::Database& database, QObject* parent = nullptr);

    /// Starts anew. Does nothing if this selection is being counted.
    void start(const ChangeDefinition& definition);
    /// Stops and forgets what was counted.
    void stop();
    /// The number of products, once it is known.
    std::optional<qint64> products() const { return m_products; }

  Q_SIGNALS:
    void counted(qint64 products);
    void failed(const QString& problem);  ///< in Finnish

  private:
    void open();
    void countSlice();
    bool countRecords();

    data::Database& m_database;
    QTimer m_next;
    std::unique_ptr<data::TableFile> m_file;
    std::array<int, 6> m_fields{};  ///< in the order of SelectionFields
    std::optional<ProductSelection> m_selection;
    QString m_condition;  ///< that is counted
    std::optional<data::RecordId> m_last;
    qint64 m_selected = 0;
    std::optional<qint64> m_products;
};

}  // namespace vatchange
