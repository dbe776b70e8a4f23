#pragma once

#include <QTextBrowser>
#include <QWidget>

#include "framework/ui/help_manual.h"

class QLabel;
class QLineEdit;
class QTreeWidget;

namespace framework {

/// Shows the manual: headings have anchors, pictures fit the window. Links within the manual are
/// followed, web links open in the desktop's browser, others are ignored.
class HelpBrowser : public QTextBrowser {
    Q_OBJECT
  public:
    HelpBrowser(const HelpManual& manual, QWidget* parent);
    /// Scrolls to a section, or to the top if the anchor is empty or unknown.
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

/// The manual's window: contents at the left, text search, back and forward.
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

/// Opens the manual at a control's section (null: at the top). A modal window gets a manual window
/// of its own; all others share one.
void showHelp(const QWidget* control);

/// Makes F1 open the manual at the focused control's section, in all windows.
void installHelpKey();

}  // namespace framework
