#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <vector>

class QWidget;

namespace framework {

/// The users' manual: Markdown, divided into sections by its headings. A comment "<!-- ohje: NAME
/// NAME ... -->" below a heading lists the windows and controls that the section explains, by
/// object name or class.
class HelpManual {
  public:
    struct Section {
        int level = 1;  ///< heading level, from 1
        QString title;
        QString anchor;  ///< see anchorOf()
    };

    explicit HelpManual(const QByteArray& markdown);

    /// The manual compiled into the program, and its address there.
    static const HelpManual& compiledIn();
    static inline const QString kAddress = QStringLiteral("qrc:/ohje/kayttoohje.md");

    /// The text without the comments.
    const QString& text() const { return m_text; }
    const std::vector<Section>& sections() const { return m_sections; }
    /// Names from the comments, with their sections' anchors.
    const QMap<QString, QString>& names() const { return m_names; }

    /// Anchor of the section for a control or its nearest parent that has one; empty if none.
    QString sectionOf(const QWidget* control) const;

    /// Link anchor of a heading: lower case, "-" for blanks, letters and digits only.
    static QString anchorOf(const QString& title);

  private:
    QString m_text;
    std::vector<Section> m_sections;
    QMap<QString, QString> m_names;
};

}  // namespace framework
