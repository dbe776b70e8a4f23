#include "vatchange/changes/change_view.h"

#include <QCollator>
#include <QLocale>
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

#include "vatchange/changes/changed_fields.h"

namespace vatchange {

namespace {

constexpr int kSlice = 50000;  // rows between two reports of progress

/// Tells whether a row's texts hold all words. What many rows share is looked at once.
class WordTest {
  public:
    WordTest(const ChangeList& list, const QString& text)
        : m_list(list), m_words(text.simplified().toCaseFolded().split(u' ', Qt::SkipEmptyParts)) {
        m_products.resize(
            static_cast<size_t>(m_words.size()) * static_cast<size_t>(list.productCount()),
            Unknown);
        m_fields.resize(static_cast<size_t>(m_words.size()) * list.fields().size(), Unknown);
    }

    bool operator()(int row) {
        for (size_t word = 0; word < static_cast<size_t>(m_words.size()); ++word) {
            if (!holds(row, word))
                return false;
        }
        return true;
    }

  private:
    enum Known : quint8 { Unknown, No, Yes };

    bool holds(int row, size_t word) {
        const QString& text = m_words[static_cast<qsizetype>(word)];
        const auto has = [&text](const QString& where) {
            return where.contains(text, Qt::CaseInsensitive);
        };
        const auto known = [](Known& slot, auto&& test) {
            if (slot == Unknown)
                slot = test() ? Yes : No;
            return slot == Yes;
        };
        const auto field = static_cast<size_t>(m_list.fieldIndex(row));
        if (known(m_fields[word * m_list.fields().size() + field],
                  [&] { return has(m_list.field(row).title); }))
            return true;
        const int product = m_list.productOf(row);
        if (product >= 0 && known(m_products[word * static_cast<size_t>(m_list.productCount()) +
                                             static_cast<size_t>(product)],
                                  [&] {
                                      return has(m_list.productNumber(product)) ||
                                             has(m_list.productName(product));
                                  }))
            return true;
        const int record = m_list.recordIndex(row);
        if (record != m_record || word != m_recordWord) {
            m_record = record;
            m_recordWord = word;
            m_recordHas = has(m_list.record(record).key);
        }
        return m_recordHas;
    }

    const ChangeList& m_list;
    const QStringList m_words;
    std::vector<Known> m_products;
    std::vector<Known> m_fields;
    int m_record = -1;
    size_t m_recordWord = 0;
    bool m_recordHas = false;
};

/// Tells whether a row is shown under a filter.
class RowTest {
  public:
    RowTest(const ChangeList& list, const ChangeFilter& filter)
        : m_list(list), m_filter(filter), m_words(list, filter.text) {}

    bool operator()(int row) {
        return !m_list.isVoid(row) &&
               (m_filter.findings == 0 || (m_list.findings(row) & m_filter.findings) != 0) &&
               (m_filter.table < 0 || m_list.tableOf(row) == m_filter.table) &&
               (m_filter.level == 0 || m_list.field(row).level == m_filter.level) &&
               (m_filter.text.isEmpty() || m_words(row));
    }

  private:
    const ChangeList& m_list;
    const ChangeFilter& m_filter;
    WordTest m_words;
};

/// The places of texts in the Finnish order; numbers in them count as numbers.
std::vector<double> ranks(const std::vector<QString>& texts) {
    QCollator collator{QLocale(QLocale::Finnish)};
    collator.setNumericMode(true);
    std::vector<QCollatorSortKey> keys;
    keys.reserve(texts.size());
    for (const QString& text : texts)
        keys.push_back(collator.sortKey(text));
    std::vector<size_t> order(texts.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(),
              [&keys](size_t a, size_t b) { return keys[a].compare(keys[b]) < 0; });
    std::vector<double> places(texts.size());
    for (size_t i = 0; i < order.size(); ++i) {
        const bool same = i > 0 && keys[order[i]].compare(keys[order[i - 1]]) == 0;
        places[order[i]] = same ? places[order[i - 1]] : static_cast<double>(i);
    }
    return places;
}

/// A number for each row by which a column is ordered. Rows without a value come last.
class SortKeys {
  public:
    static constexpr double kNone = std::numeric_limits<double>::infinity();

    SortKeys(const ChangeList& list, ChangeColumn column) : m_list(list), m_column(column) {
        std::vector<QString> texts;
        switch (column) {
            case ChangeColumn::Product:
            case ChangeColumn::Name:
                for (int i = 0; i < list.productCount(); ++i)
                    texts.push_back(column == ChangeColumn::Product ? list.productNumber(i)
                                                                    : list.productName(i));
                break;
            case ChangeColumn::Table:
                for (const QString& table : list.tables())
                    texts.push_back(tableTitle(table));
                break;
            case ChangeColumn::Field:
                for (const ChangedField& field : list.fields())
                    texts.push_back(field.title);
                break;
            case ChangeColumn::Key:
                for (int i = 0; i < list.recordCount(); ++i)
                    texts.push_back(list.record(i).key);
                break;
            default:
                break;
        }
        m_ranks = ranks(texts);
    }

    double of(int row) const {
        const auto ranked = [this](int place) {
            return place < 0 ? kNone : m_ranks[static_cast<size_t>(place)];
        };
        switch (m_column) {
            case ChangeColumn::Product:
            case ChangeColumn::Name:
                return ranked(m_list.productOf(row));
            case ChangeColumn::Table:
                return ranked(m_list.tableOf(row));
            case ChangeColumn::Key:
                return ranked(m_list.recordIndex(row));
            case ChangeColumn::Field:
                return ranked(m_list.fieldIndex(row));
            case ChangeColumn::Before:
                return m_list.field(row).number ? m_list.before(row) : kNone;
            case ChangeColumn::After:
                return m_list.field(row).number ? m_list.after(row) : kNone;
            case ChangeColumn::Difference:
                return m_list.difference(row).value_or(kNone);
            case ChangeColumn::Percent:
                return m_list.percent(row).value_or(kNone);
            case ChangeColumn::Finding: {
                const FindingSet findings = m_list.findings(row);
                return findings == 0 ? kNone : std::countr_zero(findings);
            }
        }
        return kNone;
    }

  private:
    const ChangeList& m_list;
    const ChangeColumn m_column;
    std::vector<double> m_ranks;
};

}  // namespace

int ChangeView::takeNewRows() {
    const int before = count();
    RowTest shown(m_list, m_filter);
    for (; m_seen < m_list.rowCount(); ++m_seen) {
        if (shown(m_seen))
            m_rows.push_back(static_cast<quint32>(m_seen));
    }
    return count() - before;
}

bool ChangeView::setFilter(const ChangeFilter& filter, const ViewProgress& progress) {
    std::vector<quint32> rows;
    RowTest shown(m_list, filter);
    for (int row = 0; row < m_list.rowCount(); ++row) {
        if (row % kSlice == 0 && progress && !progress(double(row) / m_list.rowCount()))
            return false;
        if (shown(row))
            rows.push_back(static_cast<quint32>(row));
    }
    std::swap(m_rows, rows);
    const ChangeFilter previous = std::exchange(m_filter, filter);
    const int seen = std::exchange(m_seen, m_list.rowCount());
    if (!m_sorted || sort(m_column, m_order, progress))
        return true;
    std::swap(m_rows, rows);
    m_filter = previous;
    m_seen = seen;
    return false;
}

bool ChangeView::sort(ChangeColumn column, Qt::SortOrder order, const ViewProgress& progress) {
    struct Keyed {
        double key;
        quint32 row;
    };
    if (progress && !progress(0.0))
        return false;
    const SortKeys keys(m_list, column);
    std::vector<Keyed> rows;
    rows.reserve(m_rows.size());
    const double sign = order == Qt::AscendingOrder ? 1.0 : -1.0;
    for (const quint32 row : m_rows) {
        const double key = keys.of(static_cast<int>(row));
        rows.push_back({key == SortKeys::kNone ? key : sign * key, row});
    }
    const auto less = [](const Keyed& a, const Keyed& b) {
        return a.key != b.key ? a.key < b.key : a.row < b.row;
    };
    // sorted parts are merged pairwise, so that progress is shown in between
    const auto size = static_cast<std::ptrdiff_t>(rows.size());
    const auto at = [&](std::ptrdiff_t place) { return rows.begin() + std::min(place, size); };
    const auto steps = 1.0 + std::ceil(std::log2(std::max(1.0, double(size) / kSlice)));
    double step = 0.0;
    const auto report = [&](std::ptrdiff_t place) {
        return !progress || progress((step + double(place) / double(size + 1)) / steps);
    };
    for (std::ptrdiff_t place = 0; place < size; place += kSlice) {
        if (!report(place))
            return false;
        std::sort(at(place), at(place + kSlice), less);
    }
    for (std::ptrdiff_t width = kSlice; width < size; width *= 2) {
        step += 1.0;
        for (std::ptrdiff_t place = 0; place + width < size; place += 2 * width) {
            if (!report(place))
                return false;
            std::inplace_merge(at(place), at(place + width), at(place + 2 * width), less);
        }
    }
    for (size_t i = 0; i < rows.size(); ++i)
        m_rows[i] = rows[i].row;
    m_sorted = true;
    m_column = column;
    m_order = order;
    return true;
}

void ChangeView::unsort() {
    std::sort(m_rows.begin(), m_rows.end());
    m_sorted = false;
}

}  // namespace vatchange
