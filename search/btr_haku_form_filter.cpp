#include <QScopeGuard>
#include <algorithm>

#include "app/company/connection_module.h"
#include "data/record/filter.h"
#include "data/record/record_codec.h"
#include "framework/ui/dialogs.h"
#include "search/btr_haku_form.h"
#include "search/filter_expression.h"
#include "search/table_model.h"
#include "search/text_match.h"
#include "search/wait_window.h"

// Filters of the generic search window: drops, passive records, the search record by record.

namespace search {

namespace {

const QString kPassive = QStringLiteral("passiivinen");
const QString kName = QStringLiteral("nimi");
const QString kSecondName = QStringLiteral("nimi2");

RecordRows::Accept acceptanceOf(const QString& expression, const data::RecordLayout& layout) {
    if (expression.trimmed().isEmpty())
        return {};
    auto filter = std::make_shared<data::Filter>(expression, layout);
    return [filter](data::RecordId, const QByteArray& bytes) { return filter->accepts(bytes); };
}

}  // namespace

void TBtrHakuForm::setBaseFilter(const QString& expression) {
    m_baseFilter = expression;
    if (m_created)
        applyFilter();
}

QString TBtrHakuForm::tableFilter() const {
    return composedFilter(m_baseFilter, m_userFilter, Passiiviset->isChecked());
}

// Shows what base filter, user filter and range let through.
void TBtrHakuForm::applyFilter() {
    const QString expression = tableFilter();
    RecordRows::Accept accept = acceptanceOf(expression, recordLayout());
    showRows(m_range, std::move(accept));
    Hakutable->setFilter(expression);  // for those who ask; the rows are the model's
    m_recordFiltering = false;
    describeRows();
}

void TBtrHakuForm::setUserFilter(const QString& expression) {
    acceptanceOf(expression, recordLayout());  // a mistake is told by its place in this text
    const QString before = m_userFilter;
    m_userFilter = expression;
    try {
        applyFilter();
    } catch (...) {
        m_userFilter = before;
        throw;
    }
}

void TBtrHakuForm::NollaaSuodin() {
    m_range.reset();
    m_userFilter.clear();
    applyFilter();
}

// What the rows are restricted by, for the line below them.
void TBtrHakuForm::describeRows() {
    QStringList parts;
    if (m_recordFiltering)
        parts.append(QStringLiteral("haku: ") + m_suodatinText);
    else if (!m_userFilter.isEmpty())
        parts.append(m_userFilter.trimmed());
    if (m_range)
        parts.append(QStringLiteral("alue: ") + Suodatin->text());
    m_condition->setText(parts.join(QStringLiteral("   ")));
    m_condition->setToolTip(tableFilter());
}

void TBtrHakuForm::SuodatinChange() {
    if (!Suodatin->text().isEmpty())
        return;
    if (m_userFilter.isEmpty() && !m_range && !m_recordFiltering)
        return;
    guarded([this] { NollaaSuodin(); });
}

void TBtrHakuForm::PassiivisetClick() {
    guarded([this] {
        if (m_recordFiltering)
            refreshRows(true);
        else
            applyFilter();
    });
}

// --- drops

void TBtrHakuForm::asetaSuodatin(const QString& text) {
    m_matchAnywhere =
        text.startsWith(QLatin1Char('*')) || Suodatin->text().startsWith(QLatin1Char('#'));
    m_suodatinText = m_matchAnywhere ? text.mid(1) : text;
}

void TBtrHakuForm::dropText(const QString& text, int place, bool onIndicator) {
    if (place < 0 || place >= m_model->columnCount())
        return;
    guarded([&] {
        const GridColumn column = m_model->column(place);
        asetaSuodatin(text);
        const bool anywhere =
            text.startsWith(QLatin1Char('*')) || text.startsWith(QLatin1Char('#'));
        if (onIndicator || anywhere) {
            recordSearch(column);
            return;
        }
        if (dropOnColumn(text, column))
            return;
        if (const auto own = ownExpression(text)) {
            setUserFilter(*own);
            return;
        }
        const data::TField* field = Hakutable->findField(column.field);
        const auto lookup = columnLookup(column.field);
        const QString name = splitOperator(text).value;
        if (lookup && (!lookup->digitsOnly || isDigitText(name))) {
            const data::TField* local = Hakutable->findField(lookup->localField);
            const bool asNumber = local != nullptr && local->kind() != data::Kind::String &&
                                  isNumericText(name) && !lookup->digitsOnly;
            setUserFilter(asNumber ? dropExpression(lookup->localField, local->kind(), text)
                                   : lookupExpression(*lookup, name));
            return;
        }
        if (field == nullptr) {
            recordSearch(column);  // a computed column: what it shows decides
            return;
        }
        setUserFilter(dropExpression(column.field, field->kind(), text));
    });
}

// The rows of the lookup table whose shown value begins with a name, as conditions on their keys.
QString TBtrHakuForm::lookupExpression(const ColumnLookup& lookup, const QString& name) {
    data::TtbTable table;
    company::openCompanyTable(table, lookup.table);
    const TextMatch match(name, false);
    const auto matches = match.onField(table, lookup.shownField);
    QStringList terms;
    for (table.first(); !table.eof(); table.next()) {
        if (matches(table.recordBytes()))
            terms.append(
                lookupTerm(lookup.localField, table.fieldByName(lookup.keyField).asString()));
    }
    // When nothing there has that name, no record may be shown.
    return terms.isEmpty() ? noRecord(lookup.localField) : terms.join(QStringLiteral(" or "));
}

// --- record by record

void TBtrHakuForm::recordSearch(const GridColumn& column) {
    const TextMatch match(m_suodatinText, m_matchAnywhere);
    std::function<bool(const data::StoredRecord&)> fits;
    const bool isField = Hakutable->findField(column.field) != nullptr;
    if (column.text || !isField) {
        fits = [this, match, text = column.text](const data::StoredRecord& record) {
            return text && match.matchesText(text(RecordRow(recordLayout(), record)));
        };
    } else {
        auto onField = match.onField(*Hakutable, column.field);
        const bool bothNames = m_searchSecondName &&
                               column.field.compare(kName, Qt::CaseInsensitive) == 0 &&
                               Hakutable->findField(kSecondName) != nullptr;
        if (bothNames) {
            auto onSecond = match.onField(*Hakutable, kSecondName);
            fits = [onField, onSecond](const data::StoredRecord& record) {
                return onField(record.bytes) || onSecond(record.bytes);
            };
        } else {
            fits = [onField](const data::StoredRecord& record) { return onField(record.bytes); };
        }
    }
    searchRecords(std::move(fits));
}

bool TBtrHakuForm::searchRecords(std::function<bool(const data::StoredRecord&)> fits) {
    const int passive = m_hasPassive ? recordLayout().indexOf(kPassive) : -1;
    auto accept = [this, fits = std::move(fits), passive](data::RecordId id,
                                                          const QByteArray& bytes) {
        const data::StoredRecord record{id, bytes};
        if (!fits(record))
            return false;
        if (passive >= 0 && !Passiiviset->isChecked() &&
            data::readBoolean(recordLayout().field(passive),
                              reinterpret_cast<const uchar*>(bytes.constData())))
            return false;
        return PerusSuodata(RecordRow(recordLayout(), record));
    };
    const std::optional<data::StoredRecord> stay = currentRecord();
    bool found = false;
    {
        // QDialog would end its modal loop when it is hidden; the window only leaves the screen.
        const bool wasVisible = isVisible();
        HakuLabel->show();
        WaitWindow wait(this);
        if (wasVisible)
            QWidget::setVisible(false);  // NOLINT(bugprone-parent-virtual-call): as said above
        wait.show();
        wait.goOn(0);
        const auto back = qScopeGuard([&] {
            wait.hide();
            HakuLabel->hide();
            if (wasVisible) {
                m_ownActivation = true;     // the rows have just been read
                QWidget::setVisible(true);  // NOLINT(bugprone-parent-virtual-call): as above
                raise();
                activateWindow();
            }
        });
        found = m_model->search(Hakutable->indexName().toInt(), m_range, std::move(accept),
                                [&wait](double share) { return wait.goOn(share); });
    }
    if (!found)
        return false;
    m_recordFiltering = true;
    m_userFilter.clear();
    const int row = stay ? m_model->rowOf(*stay) : 0;
    goToRow(std::max(row, 0));
    describeRows();
    return true;
}

}  // namespace search
