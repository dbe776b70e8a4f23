#include "vatchange/report/charts.h"

#include <QFontMetricsF>
#include <QLocale>
#include <algorithm>
#include <cmath>

namespace vatchange {

namespace {

constexpr int kYTicks = 4;  // at most, above 0

const QLocale& finnish() {
    static const QLocale kLocale(QLocale::Finnish);
    return kLocale;
}

QColor mixed(const QColor& one, const QColor& other, double share) {
    const auto mix = [share](double a, double b) { return a + (b - a) * share; };
    return QColor::fromRgbF(static_cast<float>(mix(one.redF(), other.redF())),
                            static_cast<float>(mix(one.greenF(), other.greenF())),
                            static_cast<float>(mix(one.blueF(), other.blueF())));
}

QString countText(qint64 count) {
    return finnish().toString(count);
}

QString percentText(double percent, int decimals) {
    const QString text = finnish().toString(percent, 'f', decimals);
    return (percent > 0 ? u'+' + text : text) + QStringLiteral(" %");
}

/// Decimals that tell multiples of a step apart.
int decimalsOf(double step) {
    return std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
}

/// The smallest step of 1, 2 or 5 times a power of 10 that is not below `least`.
double niceStep(double least) {
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double step : {1.0, 2.0, 5.0}) {
        if (step * power >= least * (1 - 1e-9))
            return step * power;
    }
    return 10.0 * power;
}

/// What both pictures share: painter, sizes by its font, colours.
struct Canvas {
    Canvas(QPainter& used, const ChartColours& colours_)
        : painter(used), metrics(used.font(), used.device()), colours(colours_) {
        line = metrics.height();
        thin = std::max(1.0, line / 18.0);
    }

    double width(const QString& text) const { return metrics.horizontalAdvance(text); }
    void text(const QRectF& place, int alignment, const QString& shown,
              const QColor& colour) const {
        painter.setPen(colour);
        painter.drawText(place, alignment | Qt::TextDontClip | Qt::TextSingleLine, shown);
    }
    void centred(double x, double top, const QString& shown, const QColor& colour) const {
        const double half = width(shown) / 2 + 1;
        text(QRectF(x - half, top, 2 * half, line), Qt::AlignCenter, shown, colour);
    }
    void drawLine(const QPointF& from, const QPointF& to, const QColor& colour,
                  Qt::PenStyle style = Qt::SolidLine) const {
        QPen pen(colour, thin, style);
        pen.setCapStyle(Qt::FlatCap);
        painter.setPen(pen);
        painter.drawLine(from, to);
    }

    QPainter& painter;
    QFontMetricsF metrics;
    const ChartColours& colours;
    double line = 0.0;  // height of a line of text
    double thin = 0.0;  // of lines
};

void paintNothing(const Canvas& canvas, const QRectF& place) {
    canvas.text(place, Qt::AlignCenter, QStringLiteral("Hinnat eivät muuttuneet"),
                canvas.colours.text);
}

/// The bars of a spread, with those of the changes outside its range at the ends.
class SpreadPicture {
  public:
    SpreadPicture(const Canvas& canvas, const QRectF& place, const PriceSpread& spread)
        : m_canvas(canvas), m_spread(spread), m_place(place) {
        m_most = std::max(spread.below, spread.above);
        for (const qint64 count : spread.bins)
            m_most = std::max(m_most, count);
        m_yStep = std::max(1.0, niceStep(static_cast<double>(m_most) / kYTicks));
        m_yTop = std::ceil(static_cast<double>(m_most) / m_yStep) * m_yStep;
        const double labels = m_canvas.width(countText(static_cast<qint64>(m_yTop)));
        const double line = canvas.line;
        m_plot = QRectF(place.left() + labels + line * 0.6, place.top() + line * 2.6,
                        place.width() - labels - line * 1.1, place.height() - line * 5.1);
        const double tails = (spread.below > 0 ? 1.5 : 0.0) + (spread.above > 0 ? 1.5 : 0.0);
        m_bin = m_plot.width() / (static_cast<double>(spread.bins.size()) + tails);
        m_left = m_plot.left() + (spread.below > 0 ? 1.5 * m_bin : 0.0);
    }

    void paint() const {
        grid();
        for (size_t i = 0; i < m_spread.bins.size(); ++i)
            bar(m_left + static_cast<double>(i) * m_bin, m_spread.bins[i], m_canvas.colours.bar);
        bar(m_plot.left(), m_spread.below, m_canvas.colours.pale);
        bar(m_plot.right() - m_bin, m_spread.above, m_canvas.colours.pale);
        m_canvas.drawLine(m_plot.bottomLeft(), m_plot.bottomRight(), m_canvas.colours.text);
        xLabels();
        expected();
        m_canvas.text(QRectF(m_place.left(), m_place.top(), m_place.width(), m_canvas.line),
                      Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("hintoja"),
                      m_canvas.colours.text);
        m_canvas.text(
            QRectF(m_plot.left(), m_place.bottom() - m_canvas.line, m_plot.width(), m_canvas.line),
            Qt::AlignCenter, QStringLiteral("muutos, %"), m_canvas.colours.text);
    }

  private:
    double xOf(double percent) const {
        return m_left + (percent - m_spread.from) / m_spread.width * m_bin;
    }
    double yOf(double count) const { return m_plot.bottom() - count / m_yTop * m_plot.height(); }

    void grid() const {
        const double line = m_canvas.line;
        const auto lines = std::llround(std::floor(m_yTop / m_yStep * (1 + 1e-9)));
        for (qint64 n = 0; n <= lines; ++n) {
            const double count = static_cast<double>(n) * m_yStep;
            const double y = yOf(count);
            if (count > 0)
                m_canvas.drawLine({m_plot.left(), y}, {m_plot.right(), y}, m_canvas.colours.axis);
            m_canvas.text(QRectF(m_place.left(), y - line / 2,
                                 m_plot.left() - m_place.left() - line * 0.3, line),
                          Qt::AlignRight | Qt::AlignVCenter,
                          countText(static_cast<qint64>(std::llround(count))),
                          m_canvas.colours.text);
        }
    }

    void bar(double x, qint64 count, const QColor& colour) const {
        if (count == 0)
            return;
        const double gap = std::min(m_bin * 0.12, m_canvas.line / 8);
        const double top = std::min(yOf(static_cast<double>(count)),
                                    m_plot.bottom() - 1.5 * m_canvas.thin);  // few are seen too
        m_canvas.painter.fillRect(
            QRectF(QPointF(x + gap, top), QPointF(x + m_bin - gap, m_plot.bottom())), colour);
    }

    void xLabels() const {
        const double top = m_plot.bottom() + m_canvas.line * 0.2;
        const auto shown = [](double percent, double step) {
            return finnish().toString(std::fabs(percent) < step / 1000 ? 0.0 : percent, 'f',
                                      decimalsOf(step));
        };
        const double last =
            m_spread.from + m_spread.width * static_cast<double>(m_spread.bins.size());
        double step = niceStep(m_spread.width);
        const auto tooClose = [&] {
            const double widest = std::max(m_canvas.width(shown(m_spread.from, step)),
                                           m_canvas.width(shown(last, step)));
            return widest + m_canvas.line > step / m_spread.width * m_bin;
        };
        while (tooClose() && step < last - m_spread.from)
            step = niceStep(step * 1.01);
        const auto firstMark = std::llround(std::ceil(m_spread.from / step - 1e-6));
        const auto lastMark = std::llround(std::floor(last / step + 1e-6));
        for (qint64 n = firstMark; n <= lastMark; ++n) {
            const double percent = static_cast<double>(n) * step;
            const double x = xOf(percent);
            m_canvas.drawLine({x, m_plot.bottom()}, {x, top}, m_canvas.colours.text);
            m_canvas.centred(x, top, shown(percent, step), m_canvas.colours.text);
        }
        // below the numbers, where they cannot meet
        const double second = m_place.bottom() - m_canvas.line;
        if (m_spread.below > 0)
            m_canvas.text(QRectF(m_plot.left(), second, m_plot.width(), m_canvas.line),
                          Qt::AlignLeft | Qt::AlignVCenter,
                          QStringLiteral("alle: ") + countText(m_spread.below),
                          m_canvas.colours.text);
        if (m_spread.above > 0)
            m_canvas.text(QRectF(m_plot.left(), second, m_plot.width(), m_canvas.line),
                          Qt::AlignRight | Qt::AlignVCenter,
                          QStringLiteral("yli: ") + countText(m_spread.above),
                          m_canvas.colours.text);
    }

    void expected() const {
        const double top = m_place.top() + m_canvas.line * 1.2;
        double free = m_place.left();  // where the next label may begin
        for (const double percent : m_spread.expected) {
            const double x = xOf(percent);
            m_canvas.drawLine({x, top + m_canvas.line}, {x, m_plot.bottom()},
                              m_canvas.colours.expected, Qt::DashLine);
            const QString label = QStringLiteral("odotettu ") + percentText(percent, 2);
            const double width = m_canvas.width(label);
            const double left = std::clamp(x - width / 2, m_place.left(), m_place.right() - width);
            if (left < free)
                continue;
            m_canvas.text(QRectF(left, top, width + 1, m_canvas.line), Qt::AlignLeft, label,
                          m_canvas.colours.expected);
            free = left + width + m_canvas.line;
        }
    }

    const Canvas& m_canvas;
    const PriceSpread& m_spread;
    const QRectF m_place;
    QRectF m_plot;
    qint64 m_most = 0;
    double m_yStep = 1.0;
    double m_yTop = 1.0;
    double m_bin = 0.0;
    double m_left = 0.0;
};

struct EndingBars {
    QString title;
    qint64 before;
    qint64 after;
};

std::vector<EndingBars> barsOf(const PriceEndings& endings) {
    using Counts = EndingCounts;
    const auto digit = [&](const QString& title, Counts::Digit which) {
        return EndingBars{title, endings.before.digits[which], endings.after.digits[which]};
    };
    const auto cents = [&](const QString& title, Counts::Cents which) {
        return EndingBars{title, endings.before.cents[which], endings.after.cents[which]};
    };
    return {digit(QStringLiteral("x,x0"), Counts::Zero),
            digit(QStringLiteral("x,x5"), Counts::Five),
            digit(QStringLiteral("x,x9"), Counts::Nine),
            digit(QStringLiteral("muut"), Counts::Other),
            cents(QStringLiteral(",90"), Counts::Cents90),
            cents(QStringLiteral(",95"), Counts::Cents95),
            cents(QStringLiteral(",99"), Counts::Cents99)};
}

double shareOf(qint64 count, const PriceEndings& endings) {
    return 100.0 * static_cast<double>(count) / static_cast<double>(endings.prices);
}

/// "12", "0,4", "<0,1"
QString shareText(double share) {
    if (share > 0 && share < 0.1)
        return QStringLiteral("<0,1");
    return finnish().toString(share, 'f', share > 0 && share < 1 ? 1 : 0);
}

constexpr size_t kDigitBars = 4;  // the others count a part of the same prices again

void paintLegend(const Canvas& canvas, const QRectF& place) {
    const double line = canvas.line;
    double x = place.left();
    const auto entry = [&](const QString& title, const QColor& colour) {
        canvas.painter.fillRect(QRectF(x, place.top() + line * 0.2, line * 0.6, line * 0.6),
                                colour);
        x += line * 0.9;
        canvas.text(QRectF(x, place.top(), canvas.width(title) + 1, line), Qt::AlignVCenter, title,
                    canvas.colours.text);
        x += canvas.width(title) + line;
    };
    entry(QStringLiteral("ennen"), canvas.colours.pale);
    entry(QStringLiteral("jälkeen"), canvas.colours.bar);
    canvas.text(QRectF(x, place.top(), place.right() - x, line), Qt::AlignRight | Qt::AlignVCenter,
                QStringLiteral("% hinnoista"), canvas.colours.text);
}

}  // namespace

ChartColours ChartColours::forPaper() {
    return {QColor(0x22, 0x22, 0x22), QColor(0xd0, 0xd0, 0xd0), QColor(0x2f, 0x6f, 0xb0),
            QColor(0xa9, 0xc1, 0xda), QColor(0xb3, 0x26, 0x1e)};
}

ChartColours ChartColours::forPalette(const QPalette& palette) {
    ChartColours colours = forPaper();
    const QColor base = palette.color(QPalette::Base);
    colours.text = palette.color(QPalette::Text);
    colours.axis = mixed(base, colours.text, 0.2);
    if (base.lightnessF() < 0.5F) {
        colours.bar = QColor(0x5a, 0xa6, 0xec);
        colours.pale = mixed(colours.bar, base, 0.6);
        colours.expected = QColor(0xff, 0x8a, 0x80);
    }
    return colours;
}

void paintSpread(QPainter& painter, const QRectF& place, const PriceSpread& spread,
                 const ChartColours& colours) {
    painter.save();
    const Canvas canvas(painter, colours);
    if (spread.count == 0)
        paintNothing(canvas, place);
    else
        SpreadPicture(canvas, place, spread).paint();
    painter.restore();
}

void paintEndings(QPainter& painter, const QRectF& place, const PriceEndings& endings,
                  const ChartColours& colours) {
    painter.save();
    const Canvas canvas(painter, colours);
    if (endings.prices == 0) {
        paintNothing(canvas, place);
        painter.restore();
        return;
    }
    const std::vector<EndingBars> bars = barsOf(endings);
    double most = 0.0;
    for (const EndingBars& bar : bars)
        most = std::max({most, shareOf(bar.before, endings), shareOf(bar.after, endings)});
    const double line = canvas.line;
    paintLegend(canvas, QRectF(place.left(), place.top(), place.width(), line));
    const QRectF plot(place.left(), place.top() + line * 2.4, place.width(),
                      place.height() - line * 3.8);
    const double group = plot.width() / (static_cast<double>(bars.size()) + 0.6);
    const double width = group * 0.38;
    for (size_t i = 0; i < bars.size(); ++i) {
        const double left = plot.left() + group * (static_cast<double>(i) + 0.12) +
                            (i >= kDigitBars ? group * 0.6 : 0.0);
        const auto paintBar = [&](double x, qint64 count, const QColor& colour) {
            const double share = shareOf(count, endings);
            const double height =
                count == 0 ? 0.0 : std::max(share / most * plot.height(), 1.5 * canvas.thin);
            painter.fillRect(QRectF(x, plot.bottom() - height, width, height), colour);
            canvas.centred(x + width / 2, plot.bottom() - height - line, shareText(share),
                           colours.text);
        };
        paintBar(left, bars[i].before, colours.pale);
        paintBar(left + width, bars[i].after, colours.bar);
        canvas.centred(left + width, plot.bottom() + line * 0.3, bars[i].title, colours.text);
    }
    const double digitsEnd = plot.left() + group * kDigitBars;
    canvas.drawLine(plot.bottomLeft(), {digitsEnd, plot.bottom()}, colours.text);
    canvas.drawLine({digitsEnd + group * 0.6, plot.bottom()}, plot.bottomRight(), colours.text);
    painter.restore();
}

QString spreadText(const PriceSpread& spread) {
    if (spread.count == 0)
        return QStringLiteral("Hinnat eivät muuttuneet");
    QStringList expected;
    for (const double percent : spread.expected)
        expected += percentText(percent, 2);
    QString text = QStringLiteral("%1 hintaa, muutos keskimäärin %2, mediaani %3")
                       .arg(countText(spread.count), percentText(spread.mean, 2),
                            percentText(spread.median, 2));
    if (!expected.isEmpty())
        text += QStringLiteral(", odotettu ") + expected.join(QStringLiteral(" ja "));
    return text;
}

QString endingsText(const PriceEndings& endings) {
    if (endings.prices == 0)
        return QStringLiteral("Hinnat eivät muuttuneet");
    QStringList parts;
    for (const EndingBars& bar : barsOf(endings))
        parts += QStringLiteral("%1 ennen %2 %, jälkeen %3 %")
                     .arg(bar.title, shareText(shareOf(bar.before, endings)),
                          shareText(shareOf(bar.after, endings)));
    return parts.join(QStringLiteral("; "));
}

}  // namespace vatchange
