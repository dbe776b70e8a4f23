#pragma once

#include <QList>
#include <QString>

#include "engines/data_names.h"

namespace engines::shops {

/// A token of a statement; all tokens joined give the statement.
struct SqlToken {
    enum Kind { Blank, Comment, Word, Number, Text, QuotedName, Parameter, Symbol };
    Kind kind;
    QString text;

    bool is(QLatin1String word) const { return text.compare(word, Qt::CaseInsensitive) == 0; }
    bool isBlankOrComment() const { return kind == Blank || kind == Comment; }
};

using SqlTokens = QList<SqlToken>;

SqlTokens tokensOf(const QString& sql);
QString textOf(const SqlTokens& tokens);

}  // namespace engines::shops
