#include "engines/shops/call_interface.h"

#include "data/error.h"

namespace engines::shops {

namespace {

#ifdef Q_OS_WIN
#define TV_CLIENT_CALL __stdcall
#else
#define TV_CLIENT_CALL
#endif

// BTRCALLID: operation, position block, data buffer, its length, key buffer, its length, key
// number, client. The buffer length is a 32-bit number on some platforms and a long on others; a
// 64-bit one serves both, since all of them are little-endian.
using CallWithClient = qint16(TV_CLIENT_CALL*)(quint16, void*, void*, quint64*, void*, quint8,
                                               qint8, void*);

constexpr char kCallName[] = "BTRCALLID";

}  // namespace

QStringList CallLibrary::defaultNames() {
#if defined(Q_OS_WIN64)
    return {QStringLiteral("w64btrv.dll")};
#elif defined(Q_OS_WIN)
    return {QStringLiteral("w3btrv7.dll")};
#else
    return {QStringLiteral("libpsqlmif.so")};
#endif
}

bool CallLibrary::resolve() {
    if (!m_library.load())
        return false;
    m_call = m_library.resolve(kCallName);
    return m_call != nullptr;
}

std::shared_ptr<const CallLibrary> CallLibrary::load(const QString& library,
                                                     const QString& company) {
    const QStringList names = library.isEmpty() ? defaultNames() : QStringList(library);
    QString reason;
    for (const QString& name : names) {
        const std::shared_ptr<CallLibrary> loaded(new CallLibrary(name));
        if (loaded->resolve())
            return loaded;
        // For default names the loader reports only the last path tried.
        reason = library.isEmpty()
                     ? QStringLiteral(" is not there")
                     : QStringLiteral(" cannot be loaded: ") + loaded->m_library.errorString();
    }
    const QString list = names.join(QStringLiteral(", "));
    throw DataError(
        ErrorKind::NoConnection, company,
        QStringLiteral("the record engine's client library (%1)%2; the setting %3 names "
                       "another")
            .arg(list, reason, QLatin1String(kSetting)))
        .inFinnish(QStringLiteral("tietuekannan asiakaskirjastoa (%1) ei voi ladata").arg(list),
                   QStringLiteral("Asenna tietokannan asiakasohjelmisto tähän koneeseen tai nimeä "
                                  "kirjasto asetuksessa %1.")
                       .arg(QLatin1String(kSetting)));
}

int CallLibrary::call(quint16 operation, void* positionBlock, void* data, quint32& length,
                      void* key, int keyNumber, void* clientId) const {
    quint64 bufferLength = length;
    const int status = reinterpret_cast<CallWithClient>(m_call)(
        operation, positionBlock, data, &bufferLength, key, quint8{kKeyBufferSize},
        static_cast<qint8>(keyNumber), clientId);
    length = static_cast<quint32>(bufferLength);
    return status;
}

}  // namespace engines::shops
