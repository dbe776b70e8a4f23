#include "data/table/tb_table.h"

#include <algorithm>
#include <utility>

#include "data/record/field_text.h"
#include "data/record/filter.h"
#include "data/table/key_view.h"

namespace data {

TtbTable::TtbTable() = default;

TtbTable::~TtbTable() {
    close();
}

// --- what to open

void TtbTable::setDatabase(Database* database) {
    if (isOpen() && database != m_database)
        refuse(QStringLiteral("the table is open"));
    m_database = database;
}

void TtbTable::setTableName(const QString& name) {
    if (isOpen() && name != m_tableName)
        refuse(QStringLiteral("the table is open"));
    m_tableName = name;
}

void TtbTable::setFieldDeclarations(std::vector<FieldDeclaration> declarations) {
    if (isOpen())
        refuse(QStringLiteral("the table is open"));
    m_declarations = std::move(declarations);
}

void TtbTable::open() {
    if (isOpen())
        return;
    const QString name = m_tableName.section(QLatin1Char(';'), 0, 0).trimmed();
    if (m_database == nullptr)
        throw DataError(ErrorKind::NoConnection, name, QStringLiteral("no database is set"));
    m_file = m_database->openTable(name);
    m_state = TableState::Browse;
    try {
        const KeyDef* index = findIndex(m_indexName);
        if (index == nullptr)
            throw DataError(ErrorKind::NoSuchField, name,
                            QStringLiteral("index %1").arg(m_indexName));
        buildFields();
        if (!m_filterText.trimmed().isEmpty())
            m_filter = std::make_unique<Filter>(m_filterText, m_file->layout());
        m_view = std::make_unique<KeyView>(*m_file, *index);
        updateAcceptance();
        first();
    } catch (...) {
        close();
        throw;
    }
}

void TtbTable::close() {
    if (!isOpen())
        return;
    releaseLock();
    m_state = TableState::Closed;
    m_current.reset();
    m_buffer.clear();
    m_eof = m_bof = true;
    m_fields.clear();
    m_byName.clear();
    m_filter.reset();
    m_view.reset();
    m_file.reset();
}

// --- preconditions, also checked in release builds: the alternative is a wrong record

void TtbTable::refuse(const QString& why) const {
    throw DataError(ErrorKind::Engine, m_tableName, why);
}

void TtbTable::requireOpen() const {
    if (!isOpen())
        refuse(QStringLiteral("the table is not open"));
}

void TtbTable::requireBrowsing() const {
    requireOpen();
    if (m_state != TableState::Browse)
        refuse(QStringLiteral("a record is being edited: post or cancel it first"));
}

void TtbTable::requireRecord() const {
    requireOpen();
    if (!m_current)
        refuse(QStringLiteral("there is no current record"));
}

void TtbTable::requireEditing() const {
    requireOpen();
    if (m_state == TableState::Browse)
        refuse(QStringLiteral("the record is not in edit mode"));
}

// --- keys

const KeyDef* TtbTable::findIndex(const QString& number) const {
    bool isNumber = false;
    const int wanted = number.trimmed().toInt(&isNumber);
    const std::vector<KeyDef>& all = m_file->keys();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [wanted](const KeyDef& key) { return key.number == wanted; });
    return isNumber && found != all.end() ? &*found : nullptr;
}

const KeyDef& TtbTable::currentIndex() const {
    return *findIndex(m_indexName);
}

void TtbTable::setIndexName(const QString& number) {
    if (!isOpen()) {
        m_indexName = number;
        return;
    }
    const KeyDef* index = findIndex(number);
    if (index == nullptr)
        throw DataError(ErrorKind::NoSuchField, m_tableName,
                        QStringLiteral("index %1").arg(number));
    const KeyDef& before = currentIndex();
    const std::optional<KeyView::Range> range = m_view->range();
    changeView(true, [&](bool undo) {
        m_view->setKey(undo ? before : *index);
        if (undo)
            m_view->setRange(range);
    });
    m_indexName = number.trimmed();
}

QStringList TtbTable::indexNames() const {
    requireOpen();
    QStringList names;
    for (const KeyDef& key : m_file->keys())
        names.append(QString::number(key.number));
    return names;
}

QStringList TtbTable::indexFields() const {
    return indexFields(m_indexName);
}

QStringList TtbTable::indexFields(const QString& number) const {
    requireOpen();
    const KeyDef* index = findIndex(number);
    if (index == nullptr)
        throw DataError(ErrorKind::NoSuchField, m_tableName,
                        QStringLiteral("index %1").arg(number));
    QStringList names;
    for (const KeySegment& segment : index->segments)
        names.append(m_file->layout().field(segment.fieldIndex).name);
    return names;
}

// Search values shortened to what the index can hold: a text longer than its field becomes its
// beginning (`cut` is set), so search texts may be longer than the field.
KeyValues TtbTable::fitted(const KeyValues& values, bool* cut) const {
    const KeyDef& index = currentIndex();
    if (values.size() > index.segments.size())
        throw DataError(ErrorKind::BadValue, m_tableName,
                        QStringLiteral("%1 values for index %2, which has %3 fields")
                            .arg(values.size())
                            .arg(index.number)
                            .arg(index.segments.size()));
    KeyValues fitting = values;
    for (size_t i = 0; i < fitting.size(); ++i) {
        const TFieldCacheItem& field = m_file->layout().field(index.segments[i].fieldIndex);
        if (field.kind() != Kind::String || fitting[i].typeId() != QMetaType::QString)
            continue;
        const QString text = fitting[i].toString();
        const int capacity = textCapacity(field);
        if (text.size() <= capacity)
            continue;
        fitting[i] = text.left(capacity);
        if (cut != nullptr && !text.mid(capacity).trimmed().isEmpty())
            *cut = true;
    }
    return fitting;
}

bool TtbTable::findKey(const KeyValues& values) {
    requireBrowsing();
    bool cut = false;
    const KeyValues searched = fitted(values, &cut);
    if (cut)
        return false;
    std::optional<StoredRecord> found = m_view->find(searched);
    if (!found)
        return false;
    place(std::move(found), false, false);
    return true;
}

bool TtbTable::findNearest(const KeyValues& values) {
    requireBrowsing();
    bool cut = false;
    const KeyValues searched = fitted(values, &cut);
    std::optional<StoredRecord> found = m_view->findNearest(searched);
    if (!found) {
        place(m_view->last(), true, false);
        return false;
    }
    const bool exact = !cut && m_view->compare(*found, searched) == 0;
    place(std::move(found), false, false);
    return exact;
}

bool TtbTable::hasRange() const {
    return m_view && m_view->range().has_value();
}

void TtbTable::setRange(const KeyValues& low, const KeyValues& high) {
    requireBrowsing();
    KeyView::Range range{fitted(low), fitted(high)};
    const std::optional<KeyView::Range> before = m_view->range();
    std::optional<StoredRecord> found;
    try {
        m_view->setRange(std::move(range));
        found = m_view->first();
    } catch (...) {
        m_view->setRange(before);
        throw;
    }
    place(std::move(found), false, false);
}

void TtbTable::cancelRange() {
    requireOpen();
    const std::optional<KeyView::Range> before = m_view->range();
    if (before)
        changeView(true, [&](bool undo) { m_view->setRange(undo ? before : std::nullopt); });
}

// --- walking

// Makes a record (or the empty view) current.
void TtbTable::place(std::optional<StoredRecord> record, bool atEof, bool atBof) {
    m_current = std::move(record);
    m_eof = atEof || !m_current;
    m_bof = atBof || !m_current;
}

void TtbTable::first() {
    requireBrowsing();
    place(m_view->first(), false, false);
}

void TtbTable::last() {
    requireBrowsing();
    place(m_view->last(), false, false);
}

// Moves the current record. @return false at the end of the view.
bool TtbTable::step(Direction direction) {
    if (!m_current)
        return false;
    std::optional<StoredRecord> found = m_view->step(*m_current, direction);
    m_eof = !found && direction == Direction::Forward;
    m_bof = !found && direction == Direction::Backward;
    if (!found)
        return false;
    m_current = std::move(found);
    return true;
}

void TtbTable::next() {
    requireBrowsing();
    step(Direction::Forward);
}

void TtbTable::prior() {
    requireBrowsing();
    step(Direction::Backward);
}

qint64 TtbTable::recordCount() const {
    requireOpen();
    return m_file->recordCount();
}

}  // namespace data
