#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

#include "data/record/tb_table.h"

namespace search {

/// Whether a field of a record holds a text: at the start of the field's text, or anywhere. Case is
/// ignored. Text fields are matched on their bytes, all others by the text that is shown.
class TextMatch {
  public:
    TextMatch(const QString& text, bool anywhere);

    /// Matches a text field's bytes of Windows-1252.
    bool matchesBytes(QByteArrayView bytes) const;
    bool matchesText(const QString& shown) const;

    /// A test of records by one of their fields. The table must live on, open.
    std::function<bool(const QByteArray& record)> onField(const data::TtbTable& table,
                                                          const QString& field) const;

  private:
    QString m_text;
    bool m_anywhere;
    bool m_possible;       // in Windows-1252 at all
    QByteArray m_weights;  // of the text's bytes
};

}  // namespace search
