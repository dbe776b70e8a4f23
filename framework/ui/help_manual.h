#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <vector>

class QWidget;

namespace framework {

/// The users' manual as text: Markdown, whose headings are its sections. A comment
/// "<!-- ohje: NAME NAME ... -->" below a heading names the windows and controls that the section
/// explains, by object name or class.
class HelpManual {
  public:
    struct Section {
        int level = 1;  ///< of the heading, from 1
        QString title;
        QString anchor;  ///< the title as a link names it
    };

    explicit HelpManual(const QByteArray& markdown);

    /// The manual that is compiled into the program, and the address of its page there.
    static const HelpManual& compiledIn();
    static inline const QString kAddress = QStringLiteral("qrc:/ohje/kayttoohje.md");

    /// The text without the comments.
    const QString& text() const { return m_text; }
    const std::vector<Section>& sections() const { return m_sections; }
    /// The names that the comments give, each with its section's anchor.
    const QMap<QString, QString>& names() const { return m_names; }

    /// Anchor of the section that explains a control: its own, or the nearest one's that it stands
    /// in; empty for none.
    QString sectionOf(const QWidget* control) const;

    /// A heading as a link names it: lower case, blanks as "-", nothing but letters and digits
    /// else.
    static QString anchorOf(const QString& title);

  private:
    QString m_text;
    std::vector<Section> m_sections;
    QMap<QString, QString> m_names;
};

}  // namespace framework
