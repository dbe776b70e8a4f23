#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include "data/engine/engine.h"
#include "vatchange/rules/price_rules.h"
#include "vatchange/rules/statements.h"

namespace vatchange {

/// Data that the conversion reads from a locked product record.
struct LockedProduct {
    data::RecordId id = 0;
    ProductPrices prices;
    ClassFields classes;  ///< which class fields hold the source class
    qint64 labels = 0;    ///< HRKPL
    bool inWebShop = false;
};

/// Locks product records by number and reads them under the lock.
class ProductRecords {
  public:
    static constexpr std::chrono::milliseconds kLockWait{2000};

    /// @throws data::DataError if the table or a field is missing.
    ProductRecords(data::Database& database, int sourceClass);

    enum class Outcome { Locked, HeldByOther, Gone };
    /// Locks and reads a product. After Locked, the lock is held until release().
    Outcome lock(const QString& number, LockedProduct& product,
                 std::chrono::milliseconds wait = kLockWait);
    /// Reads a product without a lock. Returns its number; empty if it is gone.
    QString read(data::RecordId id, LockedProduct& product);
    /// Releases the lock. A lock that fails to release ends with the session; logs a warning only.
    void release() noexcept;

  private:
    int requireField(const char* name) const;
    double amount(int field, const QByteArray& record) const;
    qint64 integer(int field, const QByteArray& record) const;
    void read(const QByteArray& record, LockedProduct& product) const;

    std::unique_ptr<data::TableFile> m_file;
    int m_sourceClass;
    int m_number;
    std::array<int, kPriceLevels> m_levels{};
    int m_averagePurchase;
    int m_portion;
    int m_lastPurchase;
    int m_salesClass;
    int m_secondClass;
    int m_purchaseClass;
    int m_labels;
    int m_webShop;
    std::optional<data::RecordId> m_locked;
};

}  // namespace vatchange
