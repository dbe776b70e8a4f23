#include "engines/shops/odbc_statement.h"

#include <thread>
#include <utility>

namespace engines::shops {

namespace {

// Pause between two attempts to write a locked record.
constexpr std::chrono::milliseconds kLockPause{20};

}  // namespace

OdbcStatement::OdbcStatement(std::shared_ptr<OdbcLink> link, const QString& sql)
    : m_link(std::move(link)), m_sql(sql), m_prepared(m_link->prepare(sql)) {
    m_values.resize(static_cast<size_t>(m_prepared->rewritten().parameters.size()));
    m_distinct = static_cast<size_t>(OdbcStatement::parameterNames().size()) == m_values.size();
}

OdbcStatement::~OdbcStatement() {
    m_link->returnStatement(std::move(m_prepared));
}

QStringList OdbcStatement::parameterNames() const {
    QStringList names;
    for (const QString& name : m_prepared->rewritten().parameters) {
        if (!names.contains(name, Qt::CaseInsensitive))
            names.append(name);
    }
    return names;
}

void OdbcStatement::bind(const QString& name, const Value& value) {
    // Callers bind in the order of the text: try the expected index first.
    const QStringList& names = m_prepared->rewritten().parameters;
    if (m_distinct && m_nextBind < m_values.size() &&
        names[static_cast<qsizetype>(m_nextBind)] == name) {
        m_values[m_nextBind++] = value;
        return;
    }
    bool found = false;
    for (size_t i = 0; i < m_values.size(); ++i) {
        if (names[static_cast<qsizetype>(i)].compare(name, Qt::CaseInsensitive) != 0)
            continue;
        found = true;
        m_values[i] = value;
        m_nextBind = i + 1;
    }
    if (!found)
        throw DataError(ErrorKind::NoSuchField, QString(),
                        QStringLiteral("the statement has no parameter \":%1\"").arg(name));
}

const std::vector<SqlColumn>& OdbcStatement::columns() const {
    return m_prepared->columns();
}

qint64 OdbcStatement::run(bool fetches) {
    const bool writes = !m_prepared->rewritten().returnsRows;
    if (!writes || !m_link->dialect().recordLocksStopSql)
        return runOnce(fetches);
    // Such an engine reports a locked record immediately, before it changes anything.
    const auto end = std::chrono::steady_clock::now() + m_link->lockWait();
    for (;;) {
        try {
            return runOnce(fetches);
        } catch (const DataError& error) {
            if (error.kind() != ErrorKind::Locked || m_link->isInTransaction() ||
                std::chrono::steady_clock::now() >= end)
                throw;
        }
        std::this_thread::sleep_for(kLockPause);
    }
}

qint64 OdbcStatement::runOnce(bool fetches) {
    if (m_prepared->handles().isLost) {
        m_prepared.reset();
        m_prepared = m_link->prepare(m_sql);
    }
    // The job outlives this statement if the driver never returns.
    struct Outcome {
        std::vector<Value> values;
        qint64 affected = 0;
    };
    const auto outcome = std::make_shared<Outcome>();
    outcome->values = m_values;
    m_hasRun = true;
    m_row = 0;
    m_link->guarded(*m_prepared, [prepared = m_prepared, outcome, fetches] {
        if (prepared->isResultOpen())
            prepared->closeResult();
        outcome->affected = prepared->execute(outcome->values);
        if (fetches)
            prepared->fetch();
        else if (prepared->isResultOpen())
            prepared->closeResult();
    });
    return outcome->affected;
}

bool OdbcStatement::step() {
    const size_t width = m_prepared->columns().size();
    if (width == 0) {
        if (!m_hasRun)
            execute();
        return false;
    }
    if (!m_hasRun) {
        run(true);
    } else if ((m_row + 1) * width < m_prepared->cells().size()) {
        ++m_row;
        return true;
    } else if (!m_prepared->isResultOpen()) {
        m_row = m_prepared->cells().size() / width;  // stays at the end
        return false;
    } else {
        m_link->guarded(*m_prepared, [prepared = m_prepared] { prepared->fetch(); });
        m_row = 0;
    }
    return !m_prepared->cells().empty();
}

Value OdbcStatement::value(int column) const {
    const size_t width = m_prepared->columns().size();
    const size_t at = m_row * width + static_cast<size_t>(column);
    return at < m_prepared->cells().size() ? m_prepared->cells()[at] : Value();
}

qint64 OdbcStatement::execute() {
    return run(false);
}

void OdbcStatement::reset() {
    if (m_prepared->isResultOpen() && !m_prepared->handles().isLost)
        m_link->guarded(*m_prepared, [prepared = m_prepared] { prepared->closeResult(); });
    m_hasRun = false;
    m_nextBind = 0;
}

}  // namespace engines::shops
