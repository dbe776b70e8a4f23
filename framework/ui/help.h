#pragma once

#include <QTextBrowser>
#include <QWidget>

#include "framework/ui/help_manual.h"

class QLabel;
class QLineEdit;
class QTreeWidget;

namespace framework {

/// Shows the manual's page: headings carry anchors, pictures fit the window, links of the manual
/// are followed inside it and those to the web in the desktop's browser; others go nowhere.
class HelpBrowser : public QTextBrowser {
    Q_OBJECT
  public:
    HelpBrowser(const HelpManual& manual, QWidget* parent);
    /// Goes to a section; an empty or unknown anchor: the beginning.
    void showSection(const QString& anchor);

    QVariant loadResource(int type, const QUrl& name) override;

  protected:
    void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;

  private:
    void follow(const QUrl& link);
    bool headingsAreNamed() const;
    void nameHeadings();
    void ruleTables();

    const HelpManual& m_manual;
};

/// The window of the users' manual: contents at the left, search in the text, back and forward.
class HelpWindow : public QWidget {
    Q_OBJECT
  public:
    explicit HelpWindow(const HelpManual& manual, QWidget* parent = nullptr);
    void showSection(const QString& anchor);

  private:
    QLayout* buildBar();
    void buildContents();
    void find(bool backward);
    void markMatches();

    const HelpManual& m_manual;
    QTreeWidget* m_contents;
    HelpBrowser* m_page;
    QLineEdit* m_search;
    QLabel* m_found;
};

/// Opens the manual at the section of a control (null: at the beginning). Above a modal window a
/// window of the manual opens that goes with it; otherwise there is one for all.
void showHelp(const QWidget* control);

/// Makes F1 open the manual at the section of the control that has the focus, in every window of
/// the program.
void installHelpKey();

}  // namespace framework
