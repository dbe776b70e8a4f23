#pragma once

#include "framework/ui/dialogs.h"

namespace framework {

/// Message boxes and Qt's file dialog if somebody is there, else standard error.
class ProgramDialogs : public DialogHandler {
  public:
    bool isInteractive() const override;
    void message(QWidget* parent, MessageKind kind, const QString& text) override;
    void passingMessage(QWidget* parent, const QString& text, int seconds) override;
    bool ask(QWidget* parent, const QString& text) override;
    int choose(QWidget* parent, const QString& text, const QStringList& answers) override;
    int exec(QDialog& dialog) override;
    QString saveFileName(QWidget* parent, const QString& title, const QString& suggested,
                         const QString& filter) override;
    QString openFileName(QWidget* parent, const QString& title, const QString& folder,
                         const QString& filter) override;
    QString folder(QWidget* parent, const QString& title, const QString& start) override;
};

}  // namespace framework
