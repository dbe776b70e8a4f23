#pragma once

#include <QString>
#include <QWidget>
#include <functional>

namespace vatchange {

/// What a search window of the form picks.
enum class SearchKind { SubGroup, ProductGroup, MainGroup, Product };

/// Opens the search window of a kind in front of `parent`, on the record that the form has now
/// (`present`); it calls `chosen` with the number of the record that the user picks. It stays open
/// beside its parent, so that numbers can also be dragged from it into the parent's edits. Closed,
/// it is kept for `caller` with its place, filter and ordering, until `parent` is destroyed.
/// @throws data::DataError when the table cannot be opened.
void openSearchWindow(SearchKind kind, const QString& caller, QWidget* parent,
                      const QString& present, std::function<void(const QString& key)> chosen);

}  // namespace vatchange
