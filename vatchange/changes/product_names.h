#pragma once

#include <QString>
#include <memory>

#include "data/engine/engine.h"

namespace vatchange {

/// Names of products by their numbers, from the table TUOTE as it stands. Empty for an unknown
/// product. @throws data::DataError.
class ProductNames {
  public:
    explicit ProductNames(data::Database& database);

    QString nameOf(const QString& number) const;
    /// From the bytes of a product's record.
    QString nameIn(const QByteArray& record) const;

  private:
    std::unique_ptr<data::TableFile> m_file;
    const data::TFieldCacheItem* m_name = nullptr;
};

}  // namespace vatchange
