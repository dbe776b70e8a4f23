#include "vatchange/journal/run_progress.h"

#include "vatchange/journal/order_progress.h"

namespace vatchange {

namespace {

const QByteArray kUnmarked = QByteArrayLiteral("unmarked ");
const QByteArray kUnlabelled = QByteArrayLiteral("unlabelled ");
const QString kProducts = QStringLiteral("TUOTE");
const QString kMarks = QStringLiteral("WEBKLIITOS");
const QString kLabels = QStringLiteral("HR");
const QString kSalesRows = QStringLiteral("MTRIVI");

/// Follows a step that changes products one by one, each with a web shop mark and a label of its
/// own.
class ProductSteps {
  public:
    explicit ProductSteps(RunProgress& progress) : m_progress(progress) {}

    void mark(const QByteArray& text) {
        if (text == kProductsStep || text == kProductsStepWithoutLabels) {
            m_step = Step::Products;
            m_labels = text == kProductsStep;
        } else if (text == kCodesStep) {
            m_step = Step::Codes;
        } else if (text == kProductsEnd) {
            m_product = {};
        } else if (text == kCodesEnd) {
            m_code = {};
        } else if (text.startsWith(kUnmarked)) {
            unmarked().add(text.mid(kUnmarked.size()).toLongLong());
        } else if (text.startsWith(kUnlabelled)) {
            m_progress.unlabelled.add(text.mid(kUnlabelled.size()).toLongLong());
        }
    }

    void change(const QString& table, qint64 product) {
        if (product == 0 || m_step == Step::None)
            return;
        InHand& hand = m_step == Step::Products ? m_product : m_code;
        if (table == kProducts) {
            hand = {product, false, false};
            if (m_step == Step::Products) {
                m_progress.products.add(product);
                if (!m_labels)
                    m_progress.unlabelled.add(product);
            }
        } else if (table == kMarks) {
            unmarked().remove(product);
            hand.marked = hand.marked || hand.product == product;
        } else if (table == kLabels) {
            m_progress.unlabelled.remove(product);
            hand.labelled = hand.labelled || hand.product == product;
        }
    }

    /// The run broke off here: what the products in hand lack is still to be done.
    void end() {
        if (m_product.product != 0 && !m_product.marked)
            m_progress.unmarked.add(m_product.product);
        if (m_product.product != 0 && !m_product.labelled)
            m_progress.unlabelled.add(m_product.product);
        if (m_code.product != 0 && !m_code.marked)
            m_progress.unmarkedCodes.add(m_code.product);
    }

  private:
    enum class Step { None, Products, Codes };
    struct InHand {
        qint64 product = 0;
        bool marked = false;
        bool labelled = false;
    };

    data::IdSet& unmarked() {
        return m_step == Step::Codes ? m_progress.unmarkedCodes : m_progress.unmarked;
    }

    RunProgress& m_progress;
    Step m_step = Step::None;
    bool m_labels = true;
    InHand m_product;
    InHand m_code;
};

const data::IdSet& none() {
    static const data::IdSet kNone;
    return kNone;
}

}  // namespace

QByteArray unmarkedText(qint64 product) {
    return kUnmarked + QByteArray::number(product);
}

QByteArray unlabelledText(qint64 product) {
    return kUnlabelled + QByteArray::number(product);
}

RunProgress RunProgress::read(data::RunJournal& journal, qint64 run) {
    RunProgress progress;
    std::vector<QString> names;
    std::vector<Table*> tables;
    for (const data::JournalTable& table : journal.tables(run)) {
        names.push_back(table.name.toUpper());
        tables.push_back(&progress.m_tables[names.back()]);
    }
    ProductSteps steps(progress);
    journal.visit(run, data::Direction::Forward, [&](const data::JournalEntry& entry) {
        if (entry.isMark) {
            if (const auto order = orderMarkOf(entry.mark))
                progress.m_orders[order->table].add(order->number);
            else
                steps.mark(entry.mark);
            return true;
        }
        const auto table = static_cast<size_t>(entry.table);
        if (table >= tables.size())
            throw data::DataError(
                data::ErrorKind::Damaged, QStringLiteral("run journal"),
                QStringLiteral("run %1: an entry names an unknown table").arg(run))
                .inFinnish(QStringLiteral("ajopäiväkirjan ajo %1 on vioittunut").arg(run));
        tables[table]->records.add(entry.record);
        if (entry.origin != 0)
            tables[table]->positions.add(entry.origin);
        if (names[table] == kSalesRows) {
            if (entry.origin == OrderProgress::kMarginMarkOrigin)
                progress.marginMarks.add(entry.record);
            else
                progress.marginMarks.remove(entry.record);
        }
        steps.change(names[table], entry.origin);
        return true;
    });
    steps.end();
    return progress;
}

const data::IdSet& RunProgress::positions(const QString& table) const {
    const auto found = m_tables.find(table);
    return found == m_tables.end() ? none() : found->second.positions;
}

const data::IdSet& RunProgress::records(const QString& table) const {
    const auto found = m_tables.find(table);
    return found == m_tables.end() ? none() : found->second.records;
}

const data::IdSet& RunProgress::orders(const QString& table) const {
    const auto found = m_orders.find(table);
    return found == m_orders.end() ? none() : found->second;
}

}  // namespace vatchange
