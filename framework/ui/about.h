#pragma once

#include <QDialog>

namespace framework {

/// What the program is: title, version, build stamp, and the libraries it uses with their licences.
class AboutBox : public QDialog {
    Q_OBJECT
  public:
    AboutBox(const QString& title, const QString& version, QWidget* parent);
};

}  // namespace framework
