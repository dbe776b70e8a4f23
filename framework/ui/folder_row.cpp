#include "framework/ui/folder_row.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <utility>

namespace framework {

namespace {
constexpr int kFolderCharacters = 48;
}

void addFolderRow(QFormLayout& fields, const QString& title, QLineEdit* edit,
                  std::function<void()> browse) {
    QWidget* window = edit->parentWidget();
    edit->setMinimumWidth(kFolderCharacters * window->fontMetrics().averageCharWidth());
    auto* button = new QPushButton(QStringLiteral("&Selaa..."), window);
    button->setObjectName(QStringLiteral("SelaaButton"));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, window, std::move(browse));
    auto* row = new QHBoxLayout;
    row->addWidget(edit, 1);
    row->addWidget(button);
    auto* label = new QLabel(title, window);
    label->setBuddy(edit);
    fields.addRow(label, row);
}

}  // namespace framework
