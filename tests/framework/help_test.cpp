#include "framework/ui/help.h"

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTreeWidget>

#include "tests/support/checks.h"
#include "tests/support/scripted_dialogs.h"

using framework::HelpManual;
using test::str;

namespace {

QSet<QString> anchorsOf(const HelpManual& manual) {
    QSet<QString> anchors;
    for (const HelpManual::Section& section : manual.sections()) {
        EXPECT_FALSE(anchors.contains(section.anchor)) << section.anchor.toStdString();
        anchors.insert(section.anchor);
    }
    return anchors;
}

TEST(HelpManual, EveryLinkHasATarget) {
    const HelpManual& manual = HelpManual::compiledIn();
    const QSet<QString> anchors = anchorsOf(manual);
    EXPECT_GT(anchors.size(), 25);
    EXPECT_GT(manual.names().size(), 90);
    for (auto it = manual.names().begin(); it != manual.names().end(); ++it)
        EXPECT_TRUE(anchors.contains(it.value())) << it.key().toStdString();
    static const QRegularExpression kLink(str("\\]\\((#|images/)([^)]+)\\)"));
    auto links = kLink.globalMatch(manual.text());
    int found = 0;
    framework::HelpBrowser page(manual, nullptr);
    for (; links.hasNext(); ++found) {
        const auto link = links.next();
        const QString target = link.captured(2);
        const bool exists = link.captured(1) == str("#")
                                ? anchors.contains(target)
                                : page.loadResource(QTextDocument::ImageResource,
                                                    QUrl(str("qrc:/ohje/images/") + target))
                                      .isValid();
        EXPECT_TRUE(exists) << target.toStdString();
    }
    EXPECT_GT(found, 20);
}

TEST(HelpWindow, ShowsSectionsGoesBackAndFindsText) {
    const HelpManual& manual = HelpManual::compiledIn();
    framework::HelpWindow window(manual);
    window.resize(1000, 600);
    window.show();
    auto* page = window.findChild<framework::HelpBrowser*>();
    QSet<QString> headings;
    page->showSection({});
    for (QTextBlock block = page->document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 0)
            headings.insert(HelpManual::anchorOf(block.text()));
    }
    EXPECT_EQ(headings, anchorsOf(manual));

    window.showSection(str("ajomerkintä"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return page->verticalScrollBar()->value() > 0; }));
    page->backward();
    EXPECT_EQ(page->source().fragment(), QString());

    auto* search = window.findChild<QLineEdit*>(str("OhjeHaku"));
    QTest::keyClicks(search, str("schtasks"));
    EXPECT_FALSE(page->extraSelections().isEmpty());
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_EQ(page->textCursor().selectedText().toLower(), str("schtasks"));
    QTest::keyClicks(search, str("qqq"));
    EXPECT_TRUE(page->extraSelections().isEmpty());
}

TEST(HelpBrowser, OnlyLinksToTheWebLeaveTheProgram) {
    const test::RecordedDesktop desktop;
    framework::HelpBrowser page(HelpManual::compiledIn(), nullptr);
    for (const char* link : {"https://example.org/", "file:///etc/hostname", "mailto:a@b",
                             "#ajomerkintä", "docs/zavdb.md"})
        Q_EMIT page.anchorClicked(QUrl(str(link)));
    EXPECT_EQ(desktop.opened, QList<QUrl>({QUrl(str("https://example.org/"))}));
    EXPECT_EQ(page.source().fragment(), str("ajomerkintä"));
}

}  // namespace
