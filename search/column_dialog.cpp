#include "search/column_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>
#include <utility>

namespace search {

namespace {

constexpr QSize kDefaultSize(340, 460);

}  // namespace

ColumnDialog::ColumnDialog(const std::vector<GridColumn>& columns, std::vector<GridColumn> defaults,
                           QWidget* parent)
    : QDialog(parent),
      Etsi(new QLineEdit(this)),
      Sarakkeet(new QListWidget(this)),
      m_defaults(std::move(defaults)) {
    setObjectName(QStringLiteral("SarakeValinta"));
    setWindowTitle(QStringLiteral("Sarakkeet"));
    Etsi->setPlaceholderText(QStringLiteral("Etsi saraketta"));
    Etsi->setAccessibleName(QStringLiteral("Etsi saraketta"));
    Etsi->setClearButtonEnabled(true);
    Sarakkeet->setAccessibleName(QStringLiteral("Sarakkeet"));
    Sarakkeet->setDragDropMode(QAbstractItemView::InternalMove);
    Sarakkeet->setDefaultDropAction(Qt::MoveAction);
    auto* buttons = new QDialogButtonBox(this);
    Palauta = buttons->addButton(QStringLiteral("&Palauta"), QDialogButtonBox::ResetRole);
    Palauta->setToolTip(QStringLiteral("Ohjelman omat sarakkeet ja leveydet"));
    Palauta->setAutoDefault(false);
    Ok = buttons->addButton(QDialogButtonBox::Ok);
    buttons->addButton(QStringLiteral("Peruuta"), QDialogButtonBox::RejectRole);
    auto* help = new QLabel(QStringLiteral("Rasti näyttää sarakkeen. Järjestä vetämällä."), this);
    help->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Etsi);
    layout->addWidget(Sarakkeet, 1);
    layout->addWidget(help);
    layout->addWidget(buttons);
    connect(Etsi, &QLineEdit::textChanged, this, &ColumnDialog::filterList);
    connect(Sarakkeet, &QListWidget::itemChanged, this, &ColumnDialog::updateOk);
    connect(Palauta, &QPushButton::clicked, this, [this] { fill(m_defaults); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    fill(columns);
    resize(kDefaultSize);
}

void ColumnDialog::fill(const std::vector<GridColumn>& columns) {
    m_columns = columns;
    Sarakkeet->clear();
    for (int i = 0; i < static_cast<int>(m_columns.size()); ++i) {
        const GridColumn& column = m_columns[static_cast<size_t>(i)];
        auto* item = new QListWidgetItem(column.heading());
        item->setToolTip(column.field);
        item->setData(Qt::UserRole, i);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable |
                       Qt::ItemIsDragEnabled);
        item->setCheckState(column.visible ? Qt::Checked : Qt::Unchecked);
        Sarakkeet->addItem(item);
    }
    filterList();
    updateOk();
}

void ColumnDialog::filterList() {
    const QString text = Etsi->text().trimmed();
    for (int i = 0; i < Sarakkeet->count(); ++i) {
        QListWidgetItem* item = Sarakkeet->item(i);
        item->setHidden(!item->text().contains(text, Qt::CaseInsensitive) &&
                        !item->toolTip().contains(text, Qt::CaseInsensitive));
    }
}

// A grid without columns could not be given any back from its headings.
void ColumnDialog::updateOk() {
    bool any = false;
    for (int i = 0; i < Sarakkeet->count(); ++i)
        any = any || Sarakkeet->item(i)->checkState() == Qt::Checked;
    Ok->setEnabled(any);
}

std::vector<GridColumn> ColumnDialog::columns() const {
    std::vector<GridColumn> chosen;
    for (int i = 0; i < Sarakkeet->count(); ++i) {
        const QListWidgetItem* item = Sarakkeet->item(i);
        chosen.push_back(m_columns[static_cast<size_t>(item->data(Qt::UserRole).toInt())]);
        chosen.back().visible = item->checkState() == Qt::Checked;
    }
    return chosen;
}

}  // namespace search
