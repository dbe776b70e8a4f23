#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

#include "data/table/tb_table.h"

namespace search {

/// Searches a field for a text, at its start or anywhere, ignoring case. Text fields are compared
/// by bytes, others by their shown text.
class TextMatch {
  public:
    TextMatch(const QString& text, bool anywhere);

    /// A text field's bytes, in Windows-1252.
    bool matchesBytes(QByteArrayView bytes) const;
    /// The same, already folded by kCaseFoldWeight.
    bool matchesFolded(QByteArrayView weights) const;
    bool matchesText(const QString& shown) const;

    /// Tests records by one of their fields. The table must stay open.
    std::function<bool(const QByteArray& record)> onField(const data::TtbTable& table,
                                                          const QString& field) const;

  private:
    QString m_text;
    bool m_anywhere;
    bool m_possible;       // the text can be encoded in Windows-1252
    QByteArray m_weights;  // case-folded bytes of the text
};

}  // namespace search
