#include "data/sql/uni_query.h"

#include <QDebug>
#include <algorithm>

#include "data/record/value_conversion.h"
#include "data/sql/result_set.h"

namespace data {

namespace {

bool isSameName(const QString& a, const QString& b) {
    return a.size() == b.size() && a.compare(b, Qt::CaseInsensitive) == 0;
}

}  // namespace

// --- parameters and fields

void TParam::setDate(const QDate& v) {
    m_value = v.isValid() ? v.toString(Qt::ISODate) : QStringLiteral("");
}

void TParam::setValue(const Value& v) {
    switch (v.typeId()) {
        case QMetaType::QDate:
            setDate(v.toDate());
            break;
        case QMetaType::QTime:
        case QMetaType::QDateTime:
            // Never a null string: the empty text is not NULL.
            m_value = QStringLiteral("") + valueToPlainText(v);
            break;
        case QMetaType::Bool:
        case QMetaType::Int:
            m_value = v.toLongLong();
            break;
        default:
            m_value = v;
    }
}

Value TQueryField::value() const {
    if (m_result->rowCount() == 0)
        throw DataError(ErrorKind::Engine, QString(),
                        QStringLiteral("field %1 of a result without rows").arg(m_name));
    return m_result->value(m_column);
}

qint64 TQueryField::asInteger() const {
    return valueToInteger(value());
}

double TQueryField::asFloat() const {
    return valueToFloat(value());
}

QString TQueryField::asString() const {
    return valueToPlainText(value());
}

bool TQueryField::asBoolean() const {
    return valueToBoolean(value());
}

QDate TQueryField::asDate() const {
    return valueToDate(value());
}

// --- the query

TUniQuery::TUniQuery(Database* database) : m_database(database) {}

TUniQuery::~TUniQuery() = default;

void TUniQuery::setConnection(Database* database) {
    if (database == m_database)
        return;
    close();
    m_statement.reset();
    m_database = database;
}

// Parameters follow the text; those that remain keep their object and value.
void TUniQuery::syncParameters() {
    if (m_sql.revision() == m_parsedRevision)
        return;
    m_parsedRevision = m_sql.revision();
    QString text = m_sql.text();
    if (text == m_parsedText)
        return;
    m_parsedText = std::move(text);
    std::vector<std::unique_ptr<TParam>> params;
    for (const QString& name : parameterNames(m_parsedText)) {
        const auto known = std::find_if(m_params.begin(), m_params.end(), [&](const auto& param) {
            return param && isSameName(param->name(), name);
        });
        params.push_back(known != m_params.end() ? std::move(*known)
                                                 : std::make_unique<TParam>(name));
    }
    m_params = std::move(params);
}

TParam* TUniQuery::findParam(const QString& name) {
    syncParameters();
    const auto found = std::find_if(m_params.begin(), m_params.end(), [&](const auto& param) {
        return isSameName(param->name(), name);
    });
    return found != m_params.end() ? found->get() : nullptr;
}

TParam& TUniQuery::paramByName(const QString& name) {
    TParam* param = findParam(name);
    if (param == nullptr)
        throw DataError(ErrorKind::NoSuchField, QString(),
                        QStringLiteral("parameter :%1 in \"%2\"").arg(name, m_parsedText));
    return *param;
}

void TUniQuery::prepareAndBind() {
    syncParameters();
    if (m_database == nullptr)
        throw DataError(ErrorKind::NoConnection, QString(),
                        QStringLiteral("the query has no connection"));
    if (m_debug || s_debugOfAll) {
        qDebug().noquote() << m_parsedText;
        for (const auto& param : m_params)
            qDebug().noquote().nospace()
                << "  :" << param->name() << " = " << valueToPlainText(param->value());
    }
    if (!m_statement || m_statementText != m_parsedText) {
        m_statement.reset();
        m_statement = m_database->prepare(m_parsedText);
        m_statementText = m_parsedText;
    }
    m_statement->reset();
    for (const auto& param : m_params)
        m_statement->bind(param->name(), param->value());
}

void TUniQuery::open() {
    close();
    try {
        prepareAndBind();
        const std::vector<SqlColumn>& columns = m_statement->columns();
        if (columns.empty())
            throw DataError(ErrorKind::Engine, QString(),
                            QStringLiteral("\"%1\" returns no rows").arg(m_parsedText));
        auto result = std::make_unique<ResultSet>(static_cast<int>(columns.size()));
        while (m_statement->step())
            result->append(*m_statement);
        m_statement->reset();
        result->first();
        for (size_t i = 0; i < columns.size(); ++i) {
            auto field = std::make_unique<TQueryField>();
            field->m_name = columns[i].name;
            field->m_column = static_cast<int>(i);
            field->m_result = result.get();
            m_fields.push_back(std::move(field));
        }
        m_eof = result->rowCount() == 0;
        m_result = std::move(result);
    } catch (...) {
        m_statement.reset();
        close();
        throw;
    }
}

void TUniQuery::close() {
    m_fields.clear();
    m_result.reset();
    m_eof = true;
}

void TUniQuery::requireOpen() const {
    if (!m_result)
        throw DataError(ErrorKind::Engine, QString(),
                        QStringLiteral("the query is not open: \"%1\"").arg(m_parsedText));
}

qint64 TUniQuery::recordCount() const {
    requireOpen();
    return m_result->rowCount();
}

void TUniQuery::first() {
    requireOpen();
    m_eof = !m_result->first();
}

void TUniQuery::next() {
    requireOpen();
    m_eof = !m_result->next();
}

bool TUniQuery::eof() const {
    requireOpen();
    return m_eof;
}

TQueryField* TUniQuery::findField(const QString& name) {
    const auto found = std::find_if(m_fields.begin(), m_fields.end(), [&](const auto& field) {
        return isSameName(field->fieldName(), name);
    });
    return found != m_fields.end() ? found->get() : nullptr;
}

TQueryField& TUniQuery::fieldByName(const QString& name) {
    requireOpen();
    TQueryField* field = findField(name);
    if (field == nullptr)
        throw DataError(ErrorKind::NoSuchField, QString(),
                        QStringLiteral("%1 in \"%2\"").arg(name, m_parsedText));
    return *field;
}

QStringList TUniQuery::fieldNames() const {
    QStringList names;
    for (const auto& field : m_fields)
        names.append(field->fieldName());
    return names;
}

qint64 TUniQuery::execSql() {
    close();
    qint64 affected = 0;
    try {
        prepareAndBind();
        affected = m_statement->execute();
        m_statement->reset();
    } catch (...) {
        m_statement.reset();
        throw;
    }
    return affected;
}

}  // namespace data
