#include <QFocusEvent>
#include <QKeyEvent>
#include <algorithm>

#include "data/record/record_codec.h"
#include "data/record/value_conversion.h"
#include "framework/ui/dialogs.h"
#include "search/btr_haku_form.h"
#include "search/table_model.h"

// Keys of the generic search window: ordering, nearest search, typing, ranges.

namespace search {

namespace {

// Closes a range of texts behind everything that begins with its low end.
constexpr char16_t kAfterAllTexts = 250;

bool isTypedLetter(const QString& text) {
    if (text.size() != 1)
        return false;
    const char16_t c = text.front().unicode();
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') ||
           QStringLiteral("ÄÅÖäåö").contains(text.front());
}

bool isInteger(data::Kind kind) {
    return kind == data::Kind::SmallInt || kind == data::Kind::Integer ||
           kind == data::Kind::Unsigned || kind == data::Kind::LargeInt;
}

// What a typed text means for a key field; nothing when it is no value of it.
std::optional<data::Value> keyValue(const data::TFieldCacheItem& field, const QString& text) {
    if (field.kind() == data::Kind::String)
        return data::Value(text.left(field.size));
    if (field.kind() == data::Kind::Date) {
        const QDate date = data::dateFromText(text.trimmed());
        return date.isValid() ? std::optional<data::Value>(date) : std::nullopt;
    }
    data::Value value;
    QString why;
    QString plain = text.trimmed();
    if (field.kind() == data::Kind::Float)
        plain.replace(QLatin1Char(','), QLatin1Char('.'));
    if (plain.isEmpty() || !data::textToValue(field, plain, value, &why))
        return std::nullopt;
    return value;
}

}  // namespace

// --- ordering

void TBtrHakuForm::fillIndexes() {
    IndexCombo->clear();
    for (const data::KeyDef& key : Hakutable->keys()) {
        QStringList names;
        for (const data::KeySegment& segment : key.segments) {
            const QString& field = recordLayout().field(segment.fieldIndex).name;
            names.append(keyTitle(field));
        }
        QString text = names.join(QStringLiteral(", "));
        if (IndexCombo->findText(text) >= 0)
            text += QStringLiteral(" (kirjainkoosta riippumatta)");
        IndexCombo->addItem(text, key.number);
    }
    const int place = IndexCombo->findData(m_initialIndex.toInt());
    IndexCombo->setCurrentIndex(std::max(place, 0));
}

// A field's name in the list of orders: its column's title.
QString TBtrHakuForm::keyTitle(const QString& field) const {
    for (const GridColumn& column : defaultColumns()) {
        if (column.field.compare(field, Qt::CaseInsensitive) == 0 && !column.title.isEmpty())
            return column.title;
    }
    return field;
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
        m_range.reset();  // it is the other key's
        Hakutable->setIndexName(number);
        showRows(std::nullopt, m_model->rows().accept());
        describeRows();
    });
}

void TBtrHakuForm::stepIndex(int by) {
    selectIndex(IndexCombo->currentIndex() + by);
}

// --- nearest search

void TBtrHakuForm::SearchEditChange() {
    Timer->stop();
    if (m_suppressCompletion) {
        m_suppressCompletion = false;
        return;
    }
    if (!SearchEdit->text().isEmpty())
        Timer->start();
}

bool TBtrHakuForm::moveToNearest(const QString& text) {
    const data::KeyDef& key =
        Hakutable->keys()[static_cast<size_t>(Hakutable->indexName().toInt())];
    const auto value = keyValue(recordLayout().field(key.segments.front().fieldIndex), text);
    if (!value)
        return false;
    const int row = m_model->nearest({*value});
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
        const QString whole = Hakutable->fieldByName(Hakutable->indexFields().value(0)).asString();
        // Only a completion: a record that merely lies nearest leaves what was typed.
        if (whole.size() <= typed.size() || !whole.startsWith(typed, Qt::CaseInsensitive))
            return;
        m_suppressCompletion = true;
        SearchEdit->setText(whole);
        SearchEdit->setSelection(static_cast<int>(typed.size()),
                                 static_cast<int>(whole.size() - typed.size()));
    });
}

// --- ranges

void TBtrHakuForm::asetaAlue() {
    const QString text = Suodatin->text();
    const data::KeyDef& key =
        Hakutable->keys()[static_cast<size_t>(Hakutable->indexName().toInt())];
    const data::TFieldCacheItem& field = recordLayout().field(key.segments.front().fieldIndex);
    RecordRows::Range range;
    if (field.kind() == data::Kind::String) {
        range.low = {text.left(field.size)};
        range.high = {QString(text + QChar(kAfterAllTexts)).left(field.size)};
    } else if (field.kind() == data::Kind::Date) {
        const QDate date = data::dateFromText(text.trimmed());
        if (!date.isValid()) {
            framework::Dialogs::message(this, QStringLiteral("virheellinen päiväys ") + text);
            return;
        }
        range.low = range.high = {date};
    } else if (isInteger(field.kind())) {
        bool isNumber = false;
        const qint64 number = text.trimmed().toLongLong(&isNumber);
        data::Value value;
        QString why;
        if (!isNumber || !data::textToValue(field, QString::number(number), value, &why)) {
            framework::Dialogs::message(this, QStringLiteral("Virheellinen numero ") + text);
            return;
        }
        range.low = range.high = {value};
    } else {
        framework::Dialogs::message(this, QStringLiteral("Tätä hakuavain tyyppiä ei tueta"));
        return;
    }
    showRows(range, m_model->rows().accept());
    m_range = std::move(range);
    describeRows();
}

void TBtrHakuForm::AlueRajausClick(bool on) {
    if (on || !m_range)
        return;
    guarded([this] {
        m_range.reset();
        showRows(std::nullopt, m_model->rows().accept());
        describeRows();
    });
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
    if ((event.key() == Qt::Key_Delete || event.key() == Qt::Key_Backspace) &&
        !SearchEdit->text().isEmpty()) {
        // Unless the key changes nothing: then the flag would swallow the next change.
        const bool deletes = SearchEdit->hasSelectedText() ||
                             (event.key() == Qt::Key_Backspace
                                  ? SearchEdit->cursorPosition() > 0
                                  : SearchEdit->cursorPosition() < SearchEdit->text().size());
        m_suppressCompletion = deletes;
        return false;
    }
    if (event.key() == Qt::Key_Down) {
        DBGrid1->setFocus();
        return true;
    }
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

bool TBtrHakuForm::suodatinKey(QKeyEvent& event) {
    if (event.key() == Qt::Key_Down) {
        DBGrid1->setFocus();
        return true;
    }
    if (filterKey(event))
        return true;
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter)
        return false;
    if (AlueRajaus->isChecked() && !Suodatin->text().isEmpty())
        guarded([this] { asetaAlue(); });
    return true;
}

bool TBtrHakuForm::gridKey(QKeyEvent& event) {
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) {
        DBGrid1DblClick();
        return true;
    }
    if (event.key() == Qt::Key_End || event.key() == Qt::Key_Home) {
        if (event.modifiers() & Qt::ShiftModifier)
            return false;
        guarded([&] { goToRow(event.key() == Qt::Key_Home ? 0 : m_model->lastRow()); });
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
    // Enter anywhere else presses nothing: the window has no default button.
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QDialog::keyPressEvent(event);
}

}  // namespace search
