#include "vatchange/views/changes_model.h"

#include "vatchange/changes/change_texts.h"
#include "vatchange/changes/changed_fields.h"

namespace vatchange {

namespace {

/// Of products the number, which has a column of its own.
QString keyShown(const ChangeList& list, int row) {
    const ChangeList::Record record = list.record(list.recordIndex(row));
    const bool same = record.product >= 0 && record.key == list.productNumber(record.product);
    return same ? QString() : record.key;
}

}  // namespace

QString ChangesModel::title(ChangeColumn column) {
    switch (column) {
        case ChangeColumn::Product:
            return QStringLiteral("Tuote");
        case ChangeColumn::Name:
            return QStringLiteral("Nimi");
        case ChangeColumn::Table:
            return QStringLiteral("Taulu");
        case ChangeColumn::Key:
            return QStringLiteral("Avain");
        case ChangeColumn::Field:
            return QStringLiteral("Taso tai kenttä");
        case ChangeColumn::Before:
            return QStringLiteral("Ennen");
        case ChangeColumn::After:
            return QStringLiteral("Jälkeen");
        case ChangeColumn::Difference:
            return QStringLiteral("Muutos");
        case ChangeColumn::Percent:
            return QStringLiteral("Muutos %");
        case ChangeColumn::Finding:
            break;
    }
    return QStringLiteral("Havainto");
}

bool ChangesModel::isNumber(ChangeColumn column) {
    return column == ChangeColumn::Before || column == ChangeColumn::After ||
           column == ChangeColumn::Difference || column == ChangeColumn::Percent;
}

int ChangesModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_shown;
}

int ChangesModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kChangeColumns;
}

QVariant ChangesModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_shown)
        return {};
    const auto column = static_cast<ChangeColumn>(index.column());
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (isNumber(column) ? Qt::AlignRight : Qt::AlignLeft));
    if (role != Qt::DisplayRole && (role != Qt::ToolTipRole || isNumber(column)))
        return {};
    const ChangeList& list = *m_list;
    const int row = listRow(index.row());
    switch (column) {
        case ChangeColumn::Product:
            return list.productOf(row) < 0 ? QString() : list.productNumber(list.productOf(row));
        case ChangeColumn::Name:
            return list.productOf(row) < 0 ? QString() : list.productName(list.productOf(row));
        case ChangeColumn::Table:
            return tableTitle(list.tables()[list.tableOf(row)]);
        case ChangeColumn::Key:
            return keyShown(list, row);
        case ChangeColumn::Field:
            return fieldTitleOf(list, row);
        case ChangeColumn::Before:
            return beforeShown(list, row);
        case ChangeColumn::After:
            return afterShown(list, row);
        case ChangeColumn::Difference:
            return differenceShown(list, row);
        case ChangeColumn::Percent:
            return percentShown(list, row);
        case ChangeColumn::Finding:
            return findingsShown(list, row);
    }
    return {};
}

QVariant ChangesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    const auto column = static_cast<ChangeColumn>(section);
    if (role == Qt::DisplayRole)
        return title(column);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (isNumber(column) ? Qt::AlignRight : Qt::AlignLeft));
    return {};
}

void ChangesModel::show(const ChangeList& list) {
    beginResetModel();
    m_list = &list;
    m_view.emplace(list);
    m_view->takeNewRows();
    m_shown = m_view->count();
    endResetModel();
}

int ChangesModel::rowOf(int row) const {
    for (int place = 0; place < m_shown; ++place) {
        if (m_view->row(place) == row)
            return place;
    }
    return -1;
}

void ChangesModel::takeNewRows() {
    if (m_view->takeNewRows() == 0)
        return;
    beginInsertRows({}, m_shown, m_view->count() - 1);
    m_shown = m_view->count();
    endInsertRows();
}

void ChangesModel::order(std::optional<ChangeColumn> column, Qt::SortOrder order,
                         const ViewProgress& progress) {
    beginResetModel();
    if (column)
        m_view->sort(*column, order, progress);
    else
        m_view->unsort();
    endResetModel();
}

void ChangesModel::restrict(const ChangeFilter& filter, const ViewProgress& progress) {
    beginResetModel();
    m_view->setFilter(filter, progress);
    m_shown = m_view->count();
    endResetModel();
}

}  // namespace vatchange
