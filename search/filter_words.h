#pragma once

#include <QStringList>

#include "data/dictionary/field_cache_item.h"
#include "search/filter_expression.h"

/// The user's restrictions in words, for the line below the rows. Pure functions; `heading`: the
/// column's.
namespace search {

/// Of a text dropped on a data field: `Nimi alkaa "tee"`, `Hinta >= 10`; of a complete filter the
/// filter itself.
QString filterWords(const QString& heading, data::Kind kind, const QString& text);

/// Of a name that was looked up: the names found (`Aliryhmä = Hiomakoneet`), of many the first
/// ones.
QString lookupWords(const QString& heading, const QString& name, const QStringList& found);

/// Of a record search: `Nimi sisältää "kahvi"`.
QString searchWords(const QString& heading, const SearchText& search);

}  // namespace search
