#include "framework/ui/folder_row.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <utility>

namespace framework {

namespace {
constexpr int kFolderCharacters = 48;
}

QLayout* folderRow(QLineEdit* edit, QWidget* window, std::function<void()> browse) {
    edit->setMinimumWidth(kFolderCharacters * window->fontMetrics().averageCharWidth());
    auto* button = new QPushButton(QStringLiteral("&Selaa..."), window);
    button->setObjectName(QStringLiteral("SelaaButton"));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, window, std::move(browse));
    auto* row = new QHBoxLayout;
    row->addWidget(edit, 1);
    row->addWidget(button);
    return row;
}

}  // namespace framework
