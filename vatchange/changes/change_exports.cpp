#include "vatchange/changes/change_exports.h"

#include <algorithm>

#include "platform/csv.h"
#include "vatchange/changes/change_texts.h"
#include "vatchange/changes/changed_fields.h"

namespace vatchange {

namespace {

constexpr int kSlice = 10000;  // rows between two reports of progress

void writeMark(QIODevice& output) {
    output.write("\xEF\xBB\xBF");
}

QString decimalComma(QString number) {
    return number.replace(u'.', u',');
}

QString value(const ChangeList& list, int row, const QString& text) {
    return list.field(row).number ? decimalComma(text) : text;
}

/// A text that a spreadsheet does not calculate.
QString asText(const QString& text) {
    static const QString kFormulas = QStringLiteral("=+-@\t");
    return !text.isEmpty() && kFormulas.contains(text.front()) ? u'\'' + text : text;
}

void addLine(platform::CsvWriter& writer, const QStringList& cells) {
    for (const QString& cell : cells)
        writer.add(cell);
    writer.endRecord();
}

}  // namespace

bool writeSpreadsheet(const ChangeList& list, const ChangeView& view, QIODevice& output,
                      const ViewProgress& progress) {
    writeMark(output);
    platform::CsvWriter writer(output, ';');
    addLine(writer,
            {QStringLiteral("Ajo"), QStringLiteral("Tuote"), QStringLiteral("Nimi"),
             QStringLiteral("Taulu"), QStringLiteral("Avain"), QStringLiteral("Taso tai kenttä"),
             QStringLiteral("Ennen"), QStringLiteral("Jälkeen"), QStringLiteral("Muutos"),
             QStringLiteral("Muutos %"), QStringLiteral("Havainto")});
    for (int place = 0; place < view.count(); ++place) {
        if (place % kSlice == 0 && progress && !progress(double(place) / view.count()))
            return false;
        const int row = view.row(place);
        const ChangeList::Record record = list.record(list.recordIndex(row));
        const bool hasProduct = record.product >= 0;
        const std::optional<double> difference = list.difference(row);
        const std::optional<double> percent = list.percent(row);
        addLine(writer, {QString::number(list.runs()[static_cast<size_t>(record.run)].head.number),
                         hasProduct ? asText(list.productNumber(record.product)) : QString(),
                         hasProduct ? asText(list.productName(record.product)) : QString(),
                         tableTitle(list.tables()[record.table]), asText(record.key),
                         fieldTitleOf(list, row), value(list, row, list.beforeText(row)),
                         value(list, row, list.afterText(row)),
                         difference ? plainAmount(*difference) : QString(),
                         percent ? decimalComma(QString::number(*percent, 'f', 2)) : QString(),
                         findingsShown(list, row)});
    }
    writer.flush();
    return true;
}

std::vector<ListedPrice> listedPrices(const ChangeList& list) {
    std::vector<ListedPrice> prices;
    // by product and level: 1 + the price's place
    std::vector<quint32> places(static_cast<size_t>(list.productCount()) * (kPriceLevels + 1));
    for (int row = 0; row < list.rowCount(); ++row) {
        const ChangedField& field = list.field(row);
        if (list.kind(row) != ChangeKind::Field || field.level == 0 || list.productOf(row) < 0 ||
            field.table.compare(QStringLiteral("TUOTE"), Qt::CaseInsensitive) != 0 ||
            (list.findings(row) & bitOf(ChangeFinding::Undone)) != 0)
            continue;
        quint32& place = places[static_cast<size_t>(list.productOf(row)) * (kPriceLevels + 1) +
                                static_cast<size_t>(field.level)];
        if (place == 0) {
            prices.push_back({list.productOf(row), field.level, list.before(row), 0.0});
            place = static_cast<quint32>(prices.size());
        }
        prices[place - 1].after = list.after(row);
    }
    std::erase_if(prices, [](const ListedPrice& price) { return price.before == price.after; });
    // products count up in the order of the run
    std::sort(prices.begin(), prices.end(), [](const ListedPrice& a, const ListedPrice& b) {
        return std::pair(a.product, a.level) < std::pair(b.product, b.level);
    });
    return prices;
}

void writePriceList(const ChangeList& list, PriceListForm form, QIODevice& output) {
    writeMark(output);
    platform::CsvWriter writer(output, ';');
    const std::vector<ListedPrice> prices = listedPrices(list);
    if (form == PriceListForm::Prices) {
        addLine(writer,
                {QStringLiteral("Tuotenumero"), QStringLiteral("Nimi"), QStringLiteral("Taso"),
                 QStringLiteral("Vanha hinta"), QStringLiteral("Uusi hinta")});
        for (const ListedPrice& price : prices)
            addLine(writer, {list.productNumber(price.product), list.productName(price.product),
                             QString::number(price.level), plainAmount(price.before),
                             plainAmount(price.after)});
        writer.flush();
        return;
    }
    QStringList headings{QStringLiteral("Tuotenumero"), QStringLiteral("Nimi")};
    for (int level = 1; level <= kPriceLevels; ++level)
        headings +=
            {QStringLiteral("Taso %1 vanha").arg(level), QStringLiteral("Taso %1 uusi").arg(level)};
    addLine(writer, headings);
    for (size_t i = 0; i < prices.size();) {
        const int product = prices[i].product;
        QStringList cells{list.productNumber(product), list.productName(product)};
        cells.resize(2 + 2 * kPriceLevels);
        for (; i < prices.size() && prices[i].product == product; ++i) {
            const auto place = qsizetype{2} * prices[i].level;
            cells[place] = plainAmount(prices[i].before);
            cells[place + 1] = plainAmount(prices[i].after);
        }
        addLine(writer, cells);
    }
    writer.flush();
}

}  // namespace vatchange
