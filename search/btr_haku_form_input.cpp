#include <QFocusEvent>
#include <QKeyEvent>
#include <QScopeGuard>
#include <algorithm>

#include "data/record/record_codec.h"
#include "framework/ui/dialogs.h"
#include "search/btr_haku_form.h"
#include "search/filter_words.h"
#include "search/wait_window.h"

// User input in the generic search window: keys, typing, drops, check boxes.

namespace search {

namespace {

bool isTypedLetter(const QString& text) {
    if (text.size() != 1)
        return false;
    const char16_t c = text.front().unicode();
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') ||
           QStringLiteral("ÄÅÖäåö").contains(text.front());
}

bool isEnter(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace

// --- ordering

void TBtrHakuForm::fillIndexes() {
    IndexCombo->clear();
    for (const KeySearch::Order& order : m_view->keys.orders(defaultColumns()))
        IndexCombo->addItem(order.title, order.key);
    IndexCombo->setCurrentIndex(std::max(IndexCombo->findData(m_initialIndex.toInt()), 0));
}

void TBtrHakuForm::selectIndex(int place) {
    if (place < 0 || place >= IndexCombo->count())
        return;
    IndexCombo->setCurrentIndex(place);
    IndexComboCloseUp();
}

void TBtrHakuForm::IndexComboCloseUp() {
    guarded([this] {
        const QString number = QString::number(IndexCombo->currentData().toInt());
        if (number == Hakutable->indexName())
            return;
        FilterState filter = changedFilter();
        filter.clearRange();  // of the other key
        Hakutable->setIndexName(number);
        showRows(std::move(filter), model().rows().test());
    });
    showOrder();
}

// A click on a heading: the first key that begins with its field.
void TBtrHakuForm::sortByColumn(int column) {
    const QString& field = model().column(column).field;
    for (int place = 0; place < IndexCombo->count(); ++place) {
        const auto key = IndexCombo->itemData(place).toString();
        if (Hakutable->indexFields(key).value(0).compare(field, Qt::CaseInsensitive) == 0) {
            selectIndex(place);
            break;
        }
    }
    showOrder();  // the header has marked the column that was clicked
}

// Marks the column that orders the rows.
void TBtrHakuForm::showOrder() {
    DBGrid1->horizontalHeader()->setSortIndicator(model().columnOf(m_view->keys.field().name),
                                                  Qt::AscendingOrder);
    showHints();
}

QString TBtrHakuForm::keyHeading() const {
    const QString& field = m_view->keys.field().name;
    const int column = model().columnOf(field);
    return column < 0 ? field : model().column(column).heading();
}

void TBtrHakuForm::showHints() {
    SearchEdit->setPlaceholderText(keyHeading());
    Suodatin->setPlaceholderText(AlueRajaus->isChecked() ? QStringLiteral("Enter rajaa")
                                                         : QStringLiteral("Enter tai vedä"));
}

void TBtrHakuForm::stepIndex(int by) {
    selectIndex(IndexCombo->currentIndex() + by);
}

// --- nearest search

void TBtrHakuForm::SearchEditChange() {
    Timer->stop();
    if (m_completion.textChanged(SearchEdit->text()))
        Timer->start();
}

bool TBtrHakuForm::moveToNearest(const QString& text) {
    const int row = m_view->keys.nearestRow(text);
    if (row >= 0)
        goToRow(row);
    return row >= 0;
}

bool TBtrHakuForm::gotoNearest(const QString& index, const QString& value) {
    const int place = IndexCombo->findData(index.toInt());
    if (place < 0)
        return false;
    selectIndex(place);
    bool found = false;
    guarded([&] { found = moveToNearest(value); });
    return found;
}

void TBtrHakuForm::TimerTimer() {
    guarded([this] {
        const QString typed = SearchEdit->text();
        if (typed.isEmpty() || !moveToNearest(typed) || Hakutable->isEmpty())
            return;
        if (const auto whole = m_completion.complete(typed, m_view->keys.currentText())) {
            SearchEdit->setText(*whole);
            SearchEdit->setSelection(static_cast<int>(typed.size()),
                                     static_cast<int>(whole->size() - typed.size()));
        }
    });
}

// Enter in the edit: without the delay, and on to the row found, so that the next Enter chooses it.
// Another row than the one searched for leaves the focus.
void TBtrHakuForm::searchNow() {
    Timer->stop();
    guarded([this] {
        const QString typed = SearchEdit->text();
        if (!typed.isEmpty() && moveToNearest(typed) && !Hakutable->isEmpty() &&
            m_view->keys.currentText().startsWith(typed, Qt::CaseInsensitive))
            DBGrid1->setFocus();
    });
}

// Enter in the filter edit without a range: a number goes to the nearest record by number, another
// text by name, or by the selected key if there is none.
void TBtrHakuForm::quickSearch() {
    const QString text = Suodatin->text().trimmed();
    if (text.isEmpty())
        return;
    const QString wanted = isDigitText(text) ? Hakutable->indexFields(QStringLiteral("0")).value(0)
                                             : QStringLiteral("nimi");
    for (const data::KeyDef& key : Hakutable->keys()) {
        const QString number = QString::number(key.number);
        if (Hakutable->indexFields(number).value(0).compare(wanted, Qt::CaseInsensitive) == 0) {
            gotoNearest(number, text);
            return;
        }
    }
    guarded([&] { moveToNearest(text); });
}

// --- ranges

void TBtrHakuForm::asetaAlue() {
    const QString text = Suodatin->text();
    TextRange found = textRange(m_view->keys.field(), text);
    if (!found.range) {
        framework::Dialogs::message(this, found.message);
        return;
    }
    FilterState filter = changedFilter();
    filter.setRange(std::move(*found.range), keyHeading() + u' ' + text);
    showRows(std::move(filter), model().rows().test());
}

void TBtrHakuForm::AlueRajausClick(bool on) {
    showHints();
    if (on || !m_filter.range())
        return;
    guarded([this] {
        FilterState filter = changedFilter();
        filter.clearRange();
        showRows(std::move(filter), model().rows().test());
    });
}

// --- filters

// A modifiable copy of the filter, with the check box's current state.
FilterState TBtrHakuForm::changedFilter() const {
    FilterState filter = m_filter;
    filter.setShowPassive(Passiiviset->isChecked());
    return filter;
}

void TBtrHakuForm::setBaseFilter(const QString& expression) {
    FilterState filter = changedFilter();
    filter.setBaseFilter(expression);
    if (m_view)
        applyFilter(std::move(filter));
    else
        m_filter = std::move(filter);
}

// Shows the rows that the filter's expression and range accept.
void TBtrHakuForm::applyFilter(FilterState filter) {
    const QString expression = filter.expression();
    showRows(std::move(filter), expressionTest(expression, recordLayout()));
    Hakutable->setFilter(expression);  // for callers; the model filters the rows
}

// Shows other rows and stores their filter; the current record stays current if it is shown.
void TBtrHakuForm::showRows(FilterState filter, RowTest test) {
    const auto stay = m_stage == Stage::Opening ? std::nullopt : m_view->cursor.record();
    model().show(m_view->keys.key(), filter.range(), std::move(test));
    if (m_stage == Stage::Opening)
        m_stage = Stage::Showing;
    m_filter = std::move(filter);
    m_view->cursor.goTo(stay);
    describeRows();
}

void TBtrHakuForm::describeRows() {
    const QString words = m_filter.description();
    EhtoLabel->setText(words);
    EhtoLabel->setToolTip(words);
    EhtoLabel->setVisible(m_filter.isRestricted());
    PoistaRajaus->setVisible(m_filter.isRestricted());
}

void TBtrHakuForm::setUserFilter(const QString& expression, const QString& words) {
    // Parsed separately first: an error's position refers to this text.
    expressionTest(expression, recordLayout());
    FilterState filter = changedFilter();
    filter.setUserFilter(expression, words);
    applyFilter(std::move(filter));
}

void TBtrHakuForm::NollaaSuodin() {
    FilterState filter = changedFilter();
    filter.clear();
    applyFilter(std::move(filter));
}

void TBtrHakuForm::SuodatinChange() {
    if (Suodatin->text().isEmpty() && m_filter.isRestricted())
        guarded([this] { NollaaSuodin(); });
}

void TBtrHakuForm::PassiivisetClick() {
    guarded([this] {
        if (m_filter.isRecordSearch()) {
            m_filter = changedFilter();
            refreshRows(true);  // its test reads the check box
        } else {
            applyFilter(changedFilter());
        }
    });
}

// --- drops

void TBtrHakuForm::dropText(const QString& text, int place, bool onIndicator) {
    if (place < 0 || place >= model().columnCount())
        return;
    guarded([&] {
        const GridColumn column = model().column(place);
        if (isRecordSearch(text, onIndicator))
            searchColumn(column, asetaSuodatin(text, Suodatin->text()));
        else if (!dropOnColumn(text, column))
            dropFiltered(text, column);
    });
}

void TBtrHakuForm::dropFiltered(const QString& text, const GridColumn& column) {
    const auto kindOf = [this](const QString& name) {
        const data::TField* field = Hakutable->findField(name);
        return field != nullptr ? std::optional(field->kind()) : std::nullopt;
    };
    DropTarget target{column.field, kindOf(column.field), columnLookup(column.field)};
    if (target.lookup)
        target.localKind = kindOf(target.lookup->localField);
    const DropAction action = dropAction(text, target);
    switch (action.kind) {
        case DropAction::Kind::Filter:
            setUserFilter(
                action.text,
                filterWords(column.heading(),
                            target.localKind.value_or(target.kind.value_or(data::Kind::String)),
                            text));
            break;
        case DropAction::Kind::Lookup: {
            const LookupFilter found = lookupFilter(*target.lookup, action.text);
            setUserFilter(found.expression,
                          lookupWords(column.heading(), action.text, found.names));
            break;
        }
        case DropAction::Kind::RecordSearch:
            searchColumn(column, asetaSuodatin(text, Suodatin->text()));
            break;
    }
}

// --- record by record

void TBtrHakuForm::searchColumn(const GridColumn& column, const SearchText& search) {
    searchRecords(columnTest(*Hakutable, column, search, m_bothNames),
                  searchWords(column.heading(), search),
                  keyTextTest(*Hakutable, column, search, m_bothNames));
}

bool TBtrHakuForm::searchRecords(const RowTest& test, const QString& words,
                                 const std::optional<KeyTextTest>& byKey) {
    const int passive = recordLayout().indexOf(QStringLiteral("passiivinen"));
    const RowTest accept = [this, test, passive](data::RecordId id, const QByteArray& bytes) {
        if (!test(id, bytes))
            return false;
        if (passive >= 0 && !Passiiviset->isChecked() &&
            data::readBoolean(recordLayout().field(passive),
                              reinterpret_cast<const uchar*>(bytes.constData())))
            return false;
        const data::StoredRecord record{id, bytes};
        return PerusSuodata(GridRow(recordLayout(), record));
    };
    const std::optional<data::StoredRecord> stay = m_view->cursor.record();
    if (!walkRecords(accept, byKey))
        return false;
    m_filter = changedFilter();
    m_filter.setRecordSearch(words);
    m_view->cursor.goTo(stay);
    describeRows();
    return true;
}

// Searches all records, with the wait window instead of this window. @return false if cancelled.
bool TBtrHakuForm::walkRecords(const RowTest& test, const std::optional<KeyTextTest>& byKey) {
    // Hiding a QDialog would end its modal loop; this only takes the window off the screen.
    const bool wasVisible = isVisible();
    HakuLabel->show();
    WaitWindow wait(this);
    if (wasVisible)
        QWidget::setVisible(false);  // NOLINT(bugprone-parent-virtual-call): see above
    wait.show();
    wait.onProgress(0);
    const auto back = qScopeGuard([&] {
        wait.hide();
        HakuLabel->hide();
        if (wasVisible) {
            m_nextActivation = NextActivation::KeepsRows;
            QWidget::setVisible(true);  // NOLINT(bugprone-parent-virtual-call): see above
            raise();
            activateWindow();
        }
    });
    return model().search(
        m_view->keys.key(), m_filter.range(), test,
        [&wait](double share) { return wait.onProgress(share); }, byKey);
}

// --- keys

bool TBtrHakuForm::commonKey(QKeyEvent& event) {
    if (event.key() == Qt::Key_Escape) {
        Peruuta();
        return true;
    }
    if (event.modifiers() & Qt::KeypadModifier &&
        (event.key() == Qt::Key_Plus || event.key() == Qt::Key_Minus)) {
        stepIndex(event.key() == Qt::Key_Plus ? 1 : -1);
        return true;
    }
    return false;
}

bool TBtrHakuForm::searchEditKey(QKeyEvent& event) {
    const bool backspace = event.key() == Qt::Key_Backspace;
    if ((event.key() == Qt::Key_Delete || backspace) && !SearchEdit->text().isEmpty()) {
        const int cursor = SearchEdit->cursorPosition();
        m_completion.aboutToDelete(SearchEdit->hasSelectedText() ||
                                   (backspace ? cursor > 0 : cursor < SearchEdit->text().size()));
        return false;
    }
    if (event.key() == Qt::Key_Down) {
        DBGrid1->setFocus();
        return true;
    }
    if (!isEnter(event))
        return false;
    searchNow();
    return true;
}

bool TBtrHakuForm::suodatinKey(QKeyEvent& event) {
    if (event.key() == Qt::Key_Down) {
        DBGrid1->setFocus();
        return true;
    }
    if (filterKey(event))
        return true;
    if (!isEnter(event))
        return false;
    if (!AlueRajaus->isChecked())
        quickSearch();
    else if (!Suodatin->text().isEmpty())
        guarded([this] { asetaAlue(); });
    return true;
}

bool TBtrHakuForm::gridKey(QKeyEvent& event) {
    if (isEnter(event)) {
        DBGrid1DblClick();
        return true;
    }
    if (event.key() == Qt::Key_End || event.key() == Qt::Key_Home) {
        if (event.modifiers() & Qt::ShiftModifier)
            return false;
        guarded([&] { goToRow(event.key() == Qt::Key_Home ? 0 : model().lastRow()); });
        return true;
    }
    if (!(event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) &&
        isTypedLetter(event.text())) {
        Suodatin->setText(event.text());
        Suodatin->setFocus();
        Suodatin->end(false);
        return true;
    }
    return false;
}

bool TBtrHakuForm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut && watched == SearchEdit)
        Timer->stop();
    if (event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    auto& key = static_cast<QKeyEvent&>(*event);
    const bool done = commonKey(key) || (watched == SearchEdit && searchEditKey(key)) ||
                      (watched == Suodatin && suodatinKey(key)) ||
                      (watched == DBGrid1 && gridKey(key));
    return done || QDialog::eventFilter(watched, event);
}

void TBtrHakuForm::keyPressEvent(QKeyEvent* event) {
    if (commonKey(*event)) {
        event->accept();
        return;
    }
    // Enter presses the focused button and does nothing elsewhere: the window has no default
    // button.
    if (!isEnter(*event))
        QDialog::keyPressEvent(event);
    else if (auto* button = qobject_cast<QPushButton*>(focusWidget()))
        button->click();
}

}  // namespace search
