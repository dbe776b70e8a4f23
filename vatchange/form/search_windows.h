#pragma once

#include <QMimeData>
#include <QString>
#include <QWidget>
#include <functional>

namespace vatchange {

/// Kind of record that a search window picks.
enum class SearchKind { SubGroup, ProductGroup, MainGroup, Product };

/// Opens the search window of a kind above `parent`, at the number `present`, and calls `chosen`
/// with the number that the user picks. The window is not modal, so numbers can also be dragged
/// into the parent's edits. Once closed, it keeps its position, filter and ordering for `caller`
/// until `parent` is destroyed.
/// @throws data::DataError if the table cannot be opened.
void openSearchWindow(SearchKind kind, const QString& caller, QWidget* parent,
                      const QString& present, std::function<void(const QString& key)> chosen);

/// Why a number that is dragged from a search window cannot be a number of this kind ("Raahattu
/// numero on tuotteen, tähän kuuluu aliryhmä"); empty if it can, or comes from elsewhere.
QString dropRefusal(SearchKind kind, const QMimeData& data);
/// The same for VAT classes, which no search window has.
QString classDropRefusal(const QMimeData& data);

}  // namespace vatchange
