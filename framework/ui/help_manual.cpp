#include "framework/ui/help_manual.h"

#include <QFile>
#include <QRegularExpression>
#include <QWidget>

// Resources of a static library are registered by name, outside any namespace.
static void registerManual() {
    Q_INIT_RESOURCE(ohje);
}

namespace framework {

namespace {

QByteArray compiledManual() {
    registerManual();
    QFile file(QStringLiteral(":/ohje/kayttoohje.md"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

HelpManual::HelpManual(const QByteArray& markdown) {
    static const QRegularExpression kHeading(QStringLiteral("^(#{1,6}) +(.*?) *$"));
    static const QRegularExpression kNames(QStringLiteral("^<!-- *ohje: *(.*?) *-->$"));
    static const QRegularExpression kBlanks(QStringLiteral("\\s+"));
    bool inCode = false;
    for (const QString& line : QString::fromUtf8(markdown).split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("```")))
            inCode = !inCode;
        const auto names = kNames.match(line);
        if (!inCode && names.hasMatch()) {
            for (const QString& name : names.captured(1).split(kBlanks, Qt::SkipEmptyParts))
                m_names.insert(name, m_sections.empty() ? QString() : m_sections.back().anchor);
            continue;
        }
        const auto heading = kHeading.match(line);
        if (!inCode && heading.hasMatch()) {
            m_sections.push_back({static_cast<int>(heading.captured(1).size()), heading.captured(2),
                                  anchorOf(heading.captured(2))});
        }
        m_text += line + QLatin1Char('\n');
    }
}

const HelpManual& HelpManual::compiledIn() {
    static const HelpManual manual(compiledManual());
    return manual;
}

QString HelpManual::sectionOf(const QWidget* control) const {
    for (; control != nullptr; control = control->parentWidget()) {
        for (const QString& name :
             {control->objectName(), QString::fromLatin1(control->metaObject()->className())}) {
            if (const auto found = m_names.find(name); found != m_names.end())
                return *found;
        }
    }
    return {};
}

QString HelpManual::anchorOf(const QString& title) {
    QString anchor;
    for (const QChar c : title.toLower()) {
        if (c.isLetterOrNumber() || c == QLatin1Char('-') || c == QLatin1Char('_'))
            anchor += c;
        else if (c.isSpace())
            anchor += QLatin1Char('-');
    }
    return anchor;
}

}  // namespace framework
