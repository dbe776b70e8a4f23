#include "framework/ui/program_style.h"

#include <QPainter>
#include <QStyleFactory>
#include <QStyleOptionGroupBox>
#include <QWidget>

namespace framework {

namespace {

// Of a card, in logical pixels.
constexpr int kTitleLeft = 11;
constexpr int kTitleTop = 7;
constexpr int kTitleGap = 2;  // between the title and the contents
constexpr double kCorner = 4.0;
constexpr int kDarkGround = 100;  // lightness, of 255
constexpr int kItemPadding = 4;   // of list rows, above and below together

QColor between(const QColor& from, const QColor& to, double share) {
    const auto mix = [share](int a, int b) { return static_cast<int>(a + (b - a) * share); };
    return {mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue())};
}

QFont titleFont(const QWidget* widget) {
    QFont font = widget != nullptr ? widget->font() : QFont();
    font.setBold(true);
    return font;
}

// Only plain groups are cards; checkable ones keep the base style.
const QStyleOptionGroupBox* asCard(QStyle::ComplexControl control, const QStyleOption* option) {
    if (control != QStyle::CC_GroupBox)
        return nullptr;
    const auto* box = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
    const bool checkable =
        box != nullptr && (box->subControls & QStyle::SC_GroupBoxCheckBox) != QStyle::SC_None;
    return checkable ? nullptr : box;
}

// Height 0 if the card has no title.
QRect titleRect(const QStyleOptionGroupBox& box, const QWidget* widget) {
    const int height = box.text.isEmpty() ? 0 : QFontMetrics(titleFont(widget)).height();
    return {box.rect.left() + kTitleLeft, box.rect.top() + kTitleTop,
            box.rect.width() - 2 * kTitleLeft, height};
}

void drawCard(const QStyleOptionGroupBox& box, QPainter* painter, const QWidget* widget) {
    const QPalette& palette = box.palette;
    const QColor ground = palette.color(QPalette::Window);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(between(ground, palette.color(QPalette::Active, QPalette::WindowText), 0.2));
    painter->setBrush(between(ground, palette.color(QPalette::Base), 0.6));
    painter->drawRoundedRect(QRectF(box.rect).adjusted(0.5, 0.5, -0.5, -0.5), kCorner, kCorner);
    painter->setFont(titleFont(widget));
    painter->setPen(palette.color(QPalette::WindowText));
    painter->drawText(titleRect(box, widget), Qt::AlignLeft | Qt::AlignTop | Qt::TextShowMnemonic,
                      box.text);
    painter->restore();
}

}  // namespace

ProgramStyle::ProgramStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

// Placeholder texts: readable on any background, faded when disabled.
void ProgramStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive})
        palette.setColor(group, QPalette::PlaceholderText,
                         between(palette.color(group, QPalette::Base),
                                 palette.color(group, QPalette::Text), 0.55));
    palette.setColor(QPalette::Disabled, QPalette::PlaceholderText,
                     palette.color(QPalette::Disabled, QPalette::Text));
}

// Fusion outlines check boxes and radio buttons darker than the background: invisible on a dark
// one.
void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                 QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool check = element == PE_IndicatorCheckBox;
    const QColor ground = option->palette.color(QPalette::Window);
    if ((!check && element != PE_IndicatorRadioButton) || ground.lightness() > kDarkGround)
        return;
    const double share = (option->state & State_Enabled) != State_None ? 0.5 : 0.25;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(
        between(ground, option->palette.color(QPalette::Active, QPalette::WindowText), share));
    const QRectF outline = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (check)
        painter->drawRect(outline);
    else
        painter->drawEllipse(outline);
    painter->restore();
}

void ProgramStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
    if (const QStyleOptionGroupBox* box = asCard(control, option))
        drawCard(*box, painter, widget);
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect ProgramStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                   SubControl subControl, const QWidget* widget) const {
    if (const QStyleOptionGroupBox* box = asCard(control, option)) {
        switch (subControl) {
            case SC_GroupBoxLabel:
                return titleRect(*box, widget);
            case SC_GroupBoxContents:
                return box->rect.adjusted(
                    1, titleRect(*box, widget).bottom() - box->rect.top() + 1 + kTitleGap, -1, -1);
            case SC_GroupBoxFrame:
                return box->rect;
            default:
                break;
        }
    }
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}

QSize ProgramStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                     const QSize& size, const QWidget* widget) const {
    QSize wanted = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_GroupBox) {
        if (const QStyleOptionGroupBox* box = asCard(CC_GroupBox, option)) {
            const QFontMetrics metrics(titleFont(widget));
            wanted.setWidth(
                qMax(wanted.width(),
                     metrics.size(Qt::TextShowMnemonic, box->text).width() + 2 * kTitleLeft));
        }
    } else if (type == CT_ItemViewItem) {
        wanted.rheight() += kItemPadding;
    }
    return wanted;
}

int ProgramStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                            QStyleHintReturn* returnData) const {
    if (hint == SH_EtchDisabledText || hint == SH_DialogButtonBox_ButtonsHaveIcons)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

}  // namespace framework
