#pragma once

#include <QColor>
#include <QPainter>
#include <QPalette>
#include <QRectF>

#include "vatchange/changes/price_endings.h"
#include "vatchange/changes/price_spread.h"

namespace vatchange {

/// Colours of a picture.
struct ChartColours {
    QColor text;
    QColor axis;      ///< axes and grid
    QColor bar;       ///< the prices; after the run
    QColor pale;      ///< before the run, and what lies outside the range
    QColor expected;  ///< the expected change

    static ChartColours forPaper();
    /// Light or dark like the palette.
    static ChartColours forPalette(const QPalette& palette);
};

/// Draws how the changes of prices are spread, in percent, with the expected changes marked. Uses
/// the painter's font; sizes follow it. Numbers are Finnish.
void paintSpread(QPainter& painter, const QRectF& place, const PriceSpread& spread,
                 const ChartColours& colours = ChartColours::forPaper());
/// Draws price endings before and after the run.
void paintEndings(QPainter& painter, const QRectF& place, const PriceEndings& endings,
                  const ChartColours& colours = ChartColours::forPaper());

/// The pictures in words, for screen readers.
QString spreadText(const PriceSpread& spread);
QString endingsText(const PriceEndings& endings);

}  // namespace vatchange
