#include "engines/shops/call_session.h"

#include <QtEndian>
#include <atomic>
#include <utility>

#include "engines/shops/call_status.h"

namespace engines::shops {

namespace {

// The client id: twelve zeros, two letters of the program, a number of the session.
constexpr int kAgentOffset = 12;
constexpr int kNumberOffset = 14;
constexpr std::array<char, 2> kAgent{'T', 'V'};

constexpr qsizetype kVersionBlockSize = 5;  // version and revision as words, a letter
constexpr qsizetype kVersionBlocks = 3;

std::array<char, kClientIdSize> newClientId() {
    static std::atomic<quint16> last{0};
    std::array<char, kClientIdSize> id{};
    id[kAgentOffset] = kAgent[0];
    id[kAgentOffset + 1] = kAgent[1];
    qToLittleEndian<quint16>(++last, id.data() + kNumberOffset);
    return id;
}

DataError silent(const QString& table, std::chrono::milliseconds limit) {
    return DataError(ErrorKind::NoConnection, table,
                     QStringLiteral("the record engine did not answer within %1 s")
                         .arg(static_cast<double>(limit.count()) / 1000))
        .inFinnish(
            QStringLiteral("tietuekanta ei vastannut %1 sekunnissa")
                .arg(static_cast<double>(limit.count()) / 1000),
            QStringLiteral("Tarkista, että tietokantapalvelin on käynnissä ja verkko toimii."));
}

}  // namespace

// Everything that a call uses: it may outlive its caller.
struct CallSession::Call {
    std::shared_ptr<const CallLibrary> library;
    quint16 operation = 0;
    std::shared_ptr<PositionBlock> block;
    QByteArray data;
    QByteArray key;
    int keyNumber = 0;
    std::array<char, kClientIdSize> clientId{};
    quint32 length = 0;
    int status = 0;
};

CallSession::CallSession(const QString& company, const QString& library,
                         std::chrono::milliseconds connectLimit,
                         std::chrono::milliseconds callLimit)
    : m_library(CallLibrary::load(library, company)),
      m_clientId(newClientId()),
      m_callLimit(callLimit) {
    queryVersion(company, connectLimit);
}

CallSession::~CallSession() {
    if (m_lost)
        return;
    // Their results do not matter: the session ends either way.
    for (const quint16 operation : {kReset, kStop}) {
        auto last = std::make_shared<Call>();
        last->operation = operation;
        if (!run(last, m_callLimit))
            break;
    }
}

bool CallSession::run(const std::shared_ptr<Call>& call, std::chrono::milliseconds limit) {
    call->library = m_library;
    call->clientId = m_clientId;
    if (!call->block)
        call->block = std::make_shared<PositionBlock>();
    call->key.resize(kKeyBufferSize, '\0');
    call->length = static_cast<quint32>(call->data.size());
    const bool done = m_thread.run(
        [call] {
            call->status = call->library->call(call->operation, call->block->bytes.data(),
                                               call->data.data(), call->length, call->key.data(),
                                               call->keyNumber, call->clientId.data());
        },
        limit);
    m_lost = m_lost || !done || endsSession(call->status);
    return done;
}

void CallSession::queryVersion(const QString& company, std::chrono::milliseconds limit) {
    auto call = std::make_shared<Call>();
    call->operation = kVersion;
    call->data = QByteArray(kVersionBlockSize * kVersionBlocks, '\0');
    if (!run(call, limit))
        throw silent(company, limit);
    if (call->status != kOk) {
        m_lost = true;
        throw statusError(call->status, company, m_library->fileName());
    }
    const qsizetype answered = std::min<qsizetype>(call->length, call->data.size());
    for (qsizetype at = 0; at + kVersionBlockSize <= answered; at += kVersionBlockSize) {
        const char* block = call->data.constData() + at;
        const int version = qFromLittleEndian<quint16>(block);
        if (version > 0)
            m_version = QStringLiteral("%1.%2").arg(version).arg(
                qFromLittleEndian<quint16>(block + 2), 2, 10, QLatin1Char('0'));
    }
}

int CallSession::call(quint16 operation, const std::shared_ptr<PositionBlock>& block,
                      QByteArray& data, QByteArray& key, int keyNumber, const QString& table) {
    if (m_lost)
        throw DataError(ErrorKind::NoConnection, table,
                        QStringLiteral("the connection to the record engine is lost"))
            .inFinnish(QStringLiteral("yhteys tietuekantaan on katkennut"));
    auto call = std::make_shared<Call>();
    call->operation = operation;
    call->block = block;
    call->data = std::move(data);
    call->key = std::move(key);
    call->keyNumber = keyNumber;
    if (!run(call, m_callLimit))
        throw silent(table, m_callLimit);
    data = std::move(call->data);
    key = std::move(call->key);
    // Never trust a length beyond the buffer.
    data.truncate(std::min<qsizetype>(call->length, data.size()));
    return call->status;
}

}  // namespace engines::shops
