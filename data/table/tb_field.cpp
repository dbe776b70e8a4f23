#include <QLocale>
#include <utility>

#include "data/record/display_format.h"
#include "data/record/record_codec.h"
#include "data/record/value_conversion.h"
#include "data/table/tb_table.h"

// The fields of a record table.

namespace data {

namespace {

const QString kDefaultDisplayValues = QStringLiteral("Kyllä;Ei");

bool isWholeNumber(Kind kind) {
    return kind == Kind::SmallInt || kind == Kind::Integer || kind == Kind::Unsigned ||
           kind == Kind::LargeInt;
}

// A stored field equivalent to a calculated one, for text conversion.
TFieldCacheItem calculatedItem(const FieldDeclaration& declaration) {
    TFieldCacheItem item;
    item.name = declaration.name;
    item.kindWord = static_cast<quint32>(declaration.calculatedKind);
    item.size = static_cast<quint16>(declaration.calculatedSize);
    item.storedLength = 8;
    if (declaration.calculatedKind == Kind::Float)
        item.storage = Storage::Float;
    else if (isWholeNumber(declaration.calculatedKind))
        item.storage = Storage::Integer;
    return item;
}

}  // namespace

// --- the table's side

void TtbTable::buildFields() {
    const RecordLayout& layout = m_file->layout();
    const auto add = [this](TFieldCacheItem item, const QString& name) -> TField& {
        auto field = std::make_unique<TField>();
        field->m_table = this;
        field->m_item = std::move(item);
        field->m_name = name;
        field->m_kind = field->m_item.kind();
        field->m_size = field->m_item.size;
        m_byName.insert(name.toCaseFolded(), field.get());
        m_fields.push_back(std::move(field));
        return *m_fields.back();
    };
    if (m_declarations.empty())
        for (const TFieldCacheItem& item : layout.fields())
            add(item, item.name);
    for (const FieldDeclaration& declaration : m_declarations) {
        if (declaration.calculate) {
            TField& field = add(calculatedItem(declaration), declaration.name);
            field.m_calculate = declaration.calculate;
            field.m_displayFormat = declaration.displayFormat;
            continue;
        }
        const int index = layout.indexOf(declaration.name);
        if (index < 0)
            throw DataError(ErrorKind::NoSuchField, m_tableName, declaration.name);
        add(layout.field(index), declaration.name).m_displayFormat = declaration.displayFormat;
    }
}

TField* TtbTable::findField(const QString& name) {
    return m_byName.value(name.toCaseFolded(), nullptr);
}

const TField* TtbTable::findField(const QString& name) const {
    return m_byName.value(name.toCaseFolded(), nullptr);
}

TField& TtbTable::fieldByName(const QString& name) {
    requireOpen();
    TField* field = findField(name);
    if (field == nullptr)
        throw DataError(ErrorKind::NoSuchField, m_tableName, name);
    return *field;
}

const TField& TtbTable::fieldByName(const QString& name) const {
    requireOpen();
    const TField* field = findField(name);
    if (field == nullptr)
        throw DataError(ErrorKind::NoSuchField, m_tableName, name);
    return *field;
}

const RecordLayout& TtbTable::layout() const {
    requireOpen();
    return m_file->layout();
}

const std::vector<KeyDef>& TtbTable::keys() const {
    requireOpen();
    return m_file->keys();
}

// The bytes that fields read: the edited record or the current
// one.
const QByteArray& TtbTable::readBytes() const {
    if (m_state == TableState::Edit || m_state == TableState::Insert)
        return m_buffer;
    requireRecord();
    return m_current->bytes;
}

const QByteArray& TtbTable::recordBytes() const {
    return readBytes();
}

RecordId TtbTable::recordId() const {
    return m_current && m_state != TableState::Insert ? m_current->id : 0;
}

TableFile& TtbTable::file() {
    requireOpen();
    return *m_file;
}

// --- reading

const uchar* TField::record() const {
    return reinterpret_cast<const uchar*>(m_table->readBytes().constData());
}

Value TField::value() const {
    return m_calculate ? m_calculate(*m_table) : readValue(m_item, record());
}

qint64 TField::asInteger() const {
    if (!m_calculate && isWholeNumber(m_kind))
        return readInteger(m_item, record());
    return valueToInteger(value());
}

double TField::asFloat() const {
    if (!m_calculate && m_kind == Kind::Float)
        return readFloat(m_item, record());
    return valueToFloat(value());
}

bool TField::asBoolean() const {
    if (!m_calculate && m_kind == Kind::Boolean)
        return readBoolean(m_item, record());
    return valueToBoolean(value());
}

QDate TField::asDate() const {
    if (!m_calculate && m_kind == Kind::Date)
        return readDate(m_item, record());
    return valueToDate(value());
}

QString TField::asString() const {
    if (m_calculate)
        return valueToPlainText(value());
    if (m_kind == Kind::String || m_kind == Kind::Memo)
        return readText(m_item, record());
    return valueToText(m_item, readValue(m_item, record()));
}

QString TField::displayText() const {
    return shownText(value());
}

QString TField::displayText(const QByteArray& record) const {
    Q_ASSERT(!m_calculate);
    return shownText(readValue(m_item, reinterpret_cast<const uchar*>(record.constData())));
}

QString TField::shownText(const Value& shown) const {
    if (!shown.isValid())
        return QString();
    switch (m_kind) {
        case Kind::Boolean: {
            const QString& texts =
                m_displayValues.isEmpty() ? kDefaultDisplayValues : m_displayValues;
            return texts.section(QLatin1Char(';'), valueToBoolean(shown) ? 0 : 1,
                                 valueToBoolean(shown) ? 0 : 1);
        }
        case Kind::Date:
            return valueToDate(shown).toString(QStringLiteral("dd.MM.yyyy"));
        case Kind::Time:
            return shown.toTime().toString(QStringLiteral("hh:mm:ss"));
        case Kind::Timestamp:
            return shown.toDateTime().toString(QStringLiteral("dd.MM.yyyy hh:mm:ss"));
        default:
            break;
    }
    const bool isFloat = m_kind == Kind::Float;
    const QString point = QLocale().decimalPoint();
    if ((isFloat || isWholeNumber(m_kind)) && !m_displayFormat.isEmpty())
        return formatNumber(m_displayFormat, valueToFloat(shown), point.front());
    QString plain = m_calculate ? valueToPlainText(shown) : valueToText(m_item, shown);
    return isFloat ? plain.replace(QLatin1Char('.'), point) : plain;
}

// --- writing

uchar* TField::editedRecord() {
    m_table->requireEditing();
    if (m_calculate)
        throw DataError(ErrorKind::ReadOnly, m_table->tableName(),
                        QStringLiteral("%1 is a calculated field").arg(m_name));
    return reinterpret_cast<uchar*>(m_table->m_buffer.data());
}

void TField::setValue(const Value& value) {
    writeValue(m_item, editedRecord(), value, m_table->tableName());
}

void TField::setFloat(double value) {
    if (m_kind != Kind::Float) {
        setValue(value);
        return;
    }
    writeFloat(m_item, editedRecord(), value, m_table->tableName());
}

void TField::setInteger(qint64 value) {
    setValue(value);
}

void TField::setString(const QString& value) {
    setValue(value);
}

void TField::setBoolean(bool value) {
    setValue(value);
}

void TField::setDate(const QDate& value) {
    setValue(value);
}

}  // namespace data
