#pragma once

#include "framework/ui/dialogs.h"

namespace framework {

/// The program's own dialogs: message boxes and the toolkit's file dialog where somebody is there,
/// standard error otherwise.
class ProgramDialogs : public DialogHandler {
  public:
    bool someoneThere() const override;
    void message(QWidget* parent, MessageKind kind, const QString& text) override;
    bool ask(QWidget* parent, const QString& text) override;
    QString saveFileName(QWidget* parent, const QString& title, const QString& suggested,
                         const QString& filter) override;
};

}  // namespace framework
