#pragma once

#include <QDialog>

namespace framework {

/// Title, version, build stamp, and the libraries with their licences.
class AboutBox : public QDialog {
    Q_OBJECT
  public:
    AboutBox(const QString& title, const QString& version, QWidget* parent);
};

}  // namespace framework
