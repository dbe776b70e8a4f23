#include "search/form_layout.h"

#include <algorithm>
#include <set>
#include <utility>

namespace search {

namespace {

constexpr int kSmallestWindow = 120;  // pixels
constexpr int kMaxColumns = 10000;    // limit for damaged files

const QString kColumnCount = QStringLiteral("Sarakkeita");
const QString kWidth = QStringLiteral("Lomakeleveys");
const QString kHeight = QStringLiteral("LomakeKorkeus");
const QString kOrder = QStringLiteral("Lajittelu");

QString columnKey(int place) {
    return QStringLiteral("Sarake") + QString::number(place);
}

QString widthKey(const QString& field) {
    return QStringLiteral("W_") + field;
}

std::optional<int> numberOf(const platform::IniFile& file, const QString& section,
                            const QString& key, int least) {
    bool isNumber = false;
    const int number = file.value(section, key).value_or(QString()).trimmed().toInt(&isNumber);
    return isNumber && number >= least ? std::optional(number) : std::nullopt;
}

std::vector<GridColumn> inSavedOrder(std::vector<GridColumn> columns, const platform::IniFile& file,
                                     const QString& section) {
    const int saved = numberOf(file, section, kColumnCount, 0).value_or(0);
    std::vector<GridColumn> ordered;
    std::set<QString> taken;
    for (int i = 0; i < std::min(saved, static_cast<int>(columns.size())); ++i) {
        const QString name = file.value(section, columnKey(i)).value_or(QString()).toCaseFolded();
        const auto found = std::find_if(
            columns.begin(), columns.end(),
            [&name](const GridColumn& column) { return column.field.toCaseFolded() == name; });
        if (found == columns.end() || !taken.insert(name).second)
            continue;
        ordered.push_back(*found);
        ordered.back().visible = true;
    }
    if (ordered.empty())
        return columns;
    for (GridColumn& column : columns) {
        if (taken.contains(column.field.toCaseFolded()))
            continue;
        ordered.push_back(std::move(column));
        ordered.back().visible = false;
    }
    return ordered;
}

}  // namespace

FormLayout readLayout(const platform::IniFile& file, const QString& section,
                      std::vector<GridColumn> columns) {
    FormLayout layout{.columns = inSavedOrder(std::move(columns), file, section),
                      .width = numberOf(file, section, kWidth, kSmallestWindow),
                      .height = numberOf(file, section, kHeight, kSmallestWindow),
                      .order = numberOf(file, section, kOrder, 0)};
    for (GridColumn& column : layout.columns)
        column.width = numberOf(file, section, widthKey(column.field), 1).value_or(column.width);
    return layout;
}

void writeLayout(platform::IniFile& file, const QString& section, const FormLayout& layout) {
    const auto write = [&](const QString& key, int number) {
        file.setValue(section, key, QString::number(number));
    };
    int count = 0;
    for (const GridColumn& column : layout.columns) {
        if (!column.visible)
            continue;
        if (column.width > 0)
            write(widthKey(column.field), column.width);
        file.setValue(section, columnKey(count++), column.field);
    }
    const int before = numberOf(file, section, kColumnCount, 0).value_or(0);
    for (int i = count; i < std::min(before, kMaxColumns); ++i)
        file.removeKey(section, columnKey(i));
    write(kColumnCount, count);
    if (layout.width)
        write(kWidth, *layout.width);
    write(kOrder, std::max(layout.order.value_or(0), 0));
    if (layout.height)
        write(kHeight, *layout.height);
}

}  // namespace search
