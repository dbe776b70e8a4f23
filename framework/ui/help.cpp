#include "framework/ui/help.h"

#include <QApplication>
#include <QFile>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QTextBlock>
#include <QTextTable>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "framework/ui/mail.h"

namespace framework {

namespace {

constexpr int kAnchorRole = Qt::UserRole;
constexpr int kPictureWidth = 720;
constexpr int kShortestSearch = 2;

class HelpKey : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier)
            return false;
        showHelp(QApplication::focusWidget() != nullptr ? QApplication::focusWidget()
                                                        : QApplication::activeWindow());
        return true;
    }
};

}  // namespace

// --- the page

HelpBrowser::HelpBrowser(const HelpManual& manual, QWidget* parent)
    : QTextBrowser(parent), m_manual(manual) {
    setOpenLinks(false);
    document()->setDocumentMargin(16);
    connect(this, &QTextBrowser::anchorClicked, this, &HelpBrowser::follow);
}

void HelpBrowser::showSection(const QString& anchor) {
    QUrl address(HelpManual::kAddress);
    address.setFragment(anchor);
    setSource(address, QTextDocument::MarkdownResource);
    if (anchor.isEmpty())
        verticalScrollBar()->setValue(0);
    else  // again once a newly opened window has its size
        QTimer::singleShot(0, this, [this, anchor] { scrollToAnchor(anchor); });
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    if (type == QTextDocument::MarkdownResource)
        return m_manual.text();
    QImage picture(QLatin1String(":/ohje/") + name.path().section(QLatin1String("/ohje/"), -1));
    if (picture.width() > kPictureWidth)
        picture = picture.scaledToWidth(kPictureWidth, Qt::SmoothTransformation);
    return picture.isNull() ? QVariant() : QVariant(picture);
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
    QTextBrowser::doSetSource(name, type);
    if (!headingsAreNamed()) {
        nameHeadings();
        ruleTables();
        scrollToAnchor(name.fragment());
    }
}

bool HelpBrowser::headingsAreNamed() const {
    const QTextBlock first = document()->begin();  // the manual begins with a heading
    return first.begin().fragment().charFormat().isAnchor();
}

void HelpBrowser::nameHeadings() {
    // Without this the page counts as edited and would be reloaded, without these names, at the
    // next link within it.
    const QSignalBlocker blocker(document());
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() == 0)
            continue;
        QTextCharFormat anchor;
        anchor.setAnchor(true);
        anchor.setAnchorNames({HelpManual::anchorOf(block.text())});
        QTextCursor cursor(block);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(anchor);
    }
    QTextCursor start(document());
    setTextCursor(start);
}

// Thin lines between the cells, and padding.
void HelpBrowser::ruleTables() {
    const QSignalBlocker blocker(document());
    for (QTextFrame* frame : document()->rootFrame()->childFrames()) {
        auto* table = qobject_cast<QTextTable*>(frame);
        if (table == nullptr)
            continue;
        QTextTableFormat format = table->format();
        format.setBorderCollapse(true);
        format.setBorder(1);
        format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setBorderBrush(palette().color(QPalette::Mid));
        format.setCellSpacing(0);
        format.setCellPadding(4);
        format.setTopMargin(4);
        format.setBottomMargin(10);
        table->setFormat(format);
    }
}

void HelpBrowser::follow(const QUrl& link) {
    if (link.scheme() == QLatin1String("http") || link.scheme() == QLatin1String("https"))
        Desktop::instance().open(link);
    else if (link.hasFragment())
        showSection(link.fragment());
}

// --- the window

HelpWindow::HelpWindow(const HelpManual& manual, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_manual(manual),
      m_contents(new QTreeWidget(this)),
      m_page(new HelpBrowser(manual, this)),
      m_search(new QLineEdit(this)),
      m_found(new QLabel(this)) {
    setObjectName(QStringLiteral("OhjeIkkuna"));
    setWindowTitle(QStringLiteral("Taksavaihe - käyttöohje"));
    buildContents();
    m_page->setObjectName(QStringLiteral("OhjeSivu"));
    m_page->setAccessibleName(QStringLiteral("Käyttöohje"));

    auto* halves = new QSplitter(this);
    halves->addWidget(m_contents);
    halves->addWidget(m_page);
    halves->setStretchFactor(1, 1);
    halves->setSizes({260, 780});
    halves->setChildrenCollapsible(false);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 8, 8, 8);
    column->addLayout(buildBar());
    column->addWidget(halves, 1);
    resize(1060, 680);

    const auto key = [this](const QKeySequence& keys, auto&& action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    key(QKeySequence::Find, [this] {
        m_search->setFocus();
        m_search->selectAll();
    });
    key(Qt::Key_F3, [this] { find(false); });
    key(Qt::SHIFT | Qt::Key_F3, [this] { find(true); });
    key(Qt::ALT | Qt::Key_Left, [this] { m_page->backward(); });
    key(Qt::ALT | Qt::Key_Right, [this] { m_page->forward(); });
    key(Qt::Key_Escape, [this] { close(); });
    m_page->setFocus();
}

QLayout* HelpWindow::buildBar() {
    auto* bar = new QHBoxLayout;
    const auto button = [&](const QString& name, const QString& text, const QString& hint) {
        auto* made = new QToolButton(this);
        made->setObjectName(name);
        made->setText(text);
        made->setToolTip(hint);
        made->setAutoRaise(true);
        bar->addWidget(made);
        return made;
    };
    auto* back = button(QStringLiteral("TakaisinButton"), QStringLiteral("← Takaisin"),
                        QStringLiteral("Edelliseen kohtaan (Alt-nuoli vasemmalle)"));
    auto* forward = button(QStringLiteral("EteenpainButton"), QStringLiteral("Eteenpäin →"),
                           QStringLiteral("Seuraavaan kohtaan (Alt-nuoli oikealle)"));
    bar->addStretch();
    auto* label = new QLabel(QStringLiteral("&Etsi"), this);
    label->setBuddy(m_search);
    m_found->setMinimumWidth(
        m_found->fontMetrics().horizontalAdvance(QStringLiteral("0000 osumaa")));
    bar->addWidget(m_found);
    bar->addWidget(label);
    m_search->setObjectName(QStringLiteral("OhjeHaku"));
    m_search->setClearButtonEnabled(true);
    m_search->setMinimumWidth(240);
    m_search->setToolTip(QStringLiteral("Etsi ohjeesta (Ctrl-F). Seuraava: Enter tai F3"));
    bar->addWidget(m_search);
    auto* previous = button(QStringLiteral("EdellinenButton"), QStringLiteral("Edellinen"),
                            QStringLiteral("Edellinen osuma (Vaihto-F3)"));
    auto* next = button(QStringLiteral("SeuraavaButton"), QStringLiteral("Seuraava"),
                        QStringLiteral("Seuraava osuma (F3)"));

    back->setEnabled(false);
    forward->setEnabled(false);
    connect(back, &QToolButton::clicked, m_page, &QTextBrowser::backward);
    connect(forward, &QToolButton::clicked, m_page, &QTextBrowser::forward);
    connect(m_page, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    connect(m_page, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
    connect(previous, &QToolButton::clicked, this, [this] { find(true); });
    connect(next, &QToolButton::clicked, this, [this] { find(false); });
    connect(m_search, &QLineEdit::returnPressed, this, [this] { find(false); });
    connect(m_search, &QLineEdit::textChanged, this, &HelpWindow::markMatches);
    return bar;
}

void HelpWindow::buildContents() {
    m_contents->setObjectName(QStringLiteral("OhjeSisallys"));
    m_contents->setAccessibleName(QStringLiteral("Sisällys"));
    m_contents->setHeaderHidden(true);
    QList<QTreeWidgetItem*> above;  // the open section of each level
    for (const HelpManual::Section& section : m_manual.sections()) {
        while (above.size() >= section.level)
            above.removeLast();
        auto* item =
            above.isEmpty() ? new QTreeWidgetItem(m_contents) : new QTreeWidgetItem(above.last());
        item->setText(0, section.title);
        item->setToolTip(0, section.title);
        item->setData(0, kAnchorRole, section.anchor);
        above.append(item);
    }
    m_contents->expandToDepth(0);
    connect(m_contents, &QTreeWidget::currentItemChanged, this,
            [this](const QTreeWidgetItem* current) {
                if (current != nullptr)
                    m_page->showSection(current->data(0, kAnchorRole).toString());
            });
}

void HelpWindow::showSection(const QString& anchor) {
    m_page->showSection(anchor);
}

void HelpWindow::find(bool backward) {
    const QString text = m_search->text();
    if (text.size() < kShortestSearch)
        return;
    const auto flags = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (m_page->find(text, flags))
        return;
    // wrap around
    QTextCursor cursor(m_page->document());
    cursor.movePosition(backward ? QTextCursor::End : QTextCursor::Start);
    m_page->setTextCursor(cursor);
    m_page->find(text, flags);
}

void HelpWindow::markMatches() {
    QList<QTextEdit::ExtraSelection> marks;
    const QString text = m_search->text();
    const bool searching = text.size() >= kShortestSearch;
    QTextCursor match(m_page->document());
    while (searching && !(match = m_page->document()->find(text, match)).isNull()) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = match;
        mark.format.setBackground(QColor(0xFF, 0xE0, 0x82));
        mark.format.setForeground(Qt::black);
        marks.append(mark);
    }
    m_page->setExtraSelections(marks);
    if (!searching)
        m_found->clear();
    else if (marks.isEmpty())
        m_found->setText(QStringLiteral("ei löydy"));
    else
        m_found->setText(marks.size() == 1 ? QStringLiteral("1 osuma")
                                           : QStringLiteral("%1 osumaa").arg(marks.size()));
    if (!marks.isEmpty()) {
        QTextCursor first = marks.first().cursor;
        first.setPosition(first.selectionStart());
        m_page->setTextCursor(first);
        m_page->ensureCursorVisible();
    }
}

// --- entry points

void showHelp(const QWidget* control) {
    static QPointer<HelpWindow> common;
    const HelpManual& manual = HelpManual::compiledIn();
    QWidget* modal = QApplication::activeModalWidget();
    HelpWindow* window = nullptr;
    if (modal != nullptr) {
        // a modal window blocks all windows except its children
        window = modal->findChild<HelpWindow*>();
        if (window == nullptr)
            window = new HelpWindow(manual, modal);
    } else {
        if (common == nullptr) {
            common = new HelpWindow(manual);
            QObject::connect(qApp, &QCoreApplication::aboutToQuit, common, [] { delete common; });
        }
        window = common;
    }
    if (control != nullptr && control->window() == window)
        return;  // F1 in the manual itself
    window->showSection(manual.sectionOf(control));
    window->show();
    window->raise();
    window->activateWindow();
}

void installHelpKey() {
    qApp->installEventFilter(new HelpKey(qApp));
}

}  // namespace framework
