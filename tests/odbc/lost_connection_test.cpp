// Servers that are missing, silent or gone: an error within the limit, and the next statement
// reconnects. A relay between driver and server simulates the network.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <array>
#include <atomic>
#include <thread>

#include "tests/odbc/sql_drivers.h"

namespace {

using data::DataError;
using data::ErrorKind;

/// A socket of the loopback address after `call` (connect or bind) to a port.
template <typename Call>
int loopbackSocket(quint16 port, Call call) {
    const int made = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    if (call(made, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("no connection to the server, or no port to listen on");
    return made;
}

/// Listens on loopback and forwards connections to a server, until told to be silent or to
/// close.
class Relay {
  public:
    explicit Relay(quint16 serverPort)
        : m_serverPort(serverPort), m_listener(loopbackSocket(0, ::bind)) {
        ::listen(m_listener, 8);
        m_thread = std::thread([this] { work(); });
    }
    ~Relay() {
        m_ends = true;
        m_thread.join();
    }
    quint16 port() const {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
        return ntohs(address.sin_port);
    }
    std::atomic<bool> isSilent{false};  ///< accepts connections and forwards nothing
    std::atomic<bool> drops{false};     ///< closes the connections once

  private:
    void work() {
        std::vector<pollfd> watched{{m_listener, POLLIN, 0}};  // then client, server, ...
        const auto closeConnections = [&watched] {
            for (; watched.size() > 1; watched.pop_back())
                ::close(watched.back().fd);
        };
        while (!m_ends) {
            if (drops.exchange(false))
                closeConnections();
            const size_t count = isSilent ? 1 : watched.size();
            if (::poll(watched.data(), count, 20) <= 0)
                continue;
            for (size_t i = 1; i < count; ++i) {
                std::array<char, 65536> bytes{};
                if (watched[i].revents == 0)
                    continue;
                const ssize_t got = ::read(watched[i].fd, bytes.data(), bytes.size());
                const int other = watched[i % 2 == 1 ? i + 1 : i - 1].fd;
                if (got <= 0)
                    ::shutdown(other, SHUT_WR);
                else if (::send(other, bytes.data(), static_cast<size_t>(got), MSG_NOSIGNAL) < 0)
                    ::shutdown(watched[i].fd, SHUT_RD);
            }
            if (watched[0].revents != 0) {
                watched.push_back({::accept(m_listener, nullptr, nullptr), POLLIN, 0});
                watched.push_back({loopbackSocket(m_serverPort, ::connect), POLLIN, 0});
            }
        }
        closeConnections();
        ::close(m_listener);
    }

    quint16 m_serverPort;
    int m_listener;
    std::atomic<bool> m_ends{false};
    std::thread m_thread;
};

struct Server {
    const char* name;
    const char* portKey;   // of odbc.ini: what stands before the port
    const char* redirect;  // connection attributes that lead to port %1 instead
};

void PrintTo(const Server& server, std::ostream* out) {
    *out << server.name;
}

constexpr std::array<Server, 2> kServers{
    {{"virtuoso", "Address = 127.0.0.1:", "HOST=127.0.0.1:%1"}, {"mariadb", "PORT = ", "PORT=%1"}}};

class LostConnection : public ::testing::TestWithParam<Server> {
  protected:
    void SetUp() override {
        if (!test::SqlEngine::isAvailable(QLatin1String(GetParam().name)))
            GTEST_SKIP() << "the SQL servers are not running";
        QFile sources(qEnvironmentVariable("ODBCINI"));
        ASSERT_TRUE(sources.open(QIODevice::ReadOnly));
        const QRegularExpression port(QLatin1String(GetParam().portKey) + QStringLiteral("(\\d+)"));
        const auto found = port.match(QString::fromUtf8(sources.readAll()));
        ASSERT_TRUE(found.hasMatch());
        m_relay = std::make_unique<Relay>(found.captured(1).toUShort());
    }
    engines::shops::OdbcSettings settings() const {
        engines::shops::OdbcSettings settings;
        settings.dataSource = QStringLiteral("taksavaihe-") + QLatin1String(GetParam().name);
        settings.attributes = QString::fromLatin1(GetParam().redirect).arg(m_relay->port());
        settings.connectLimit = std::chrono::milliseconds(3000);
        settings.statementLimit = std::chrono::milliseconds(3000);
        return settings;
    }
    /// Expects the error of a lost connection within the limit.
    template <typename Call>
    void expectLost(Call call) {
        QElapsedTimer timer;
        timer.start();
        const DataError error = test::thrownBy(call);
        EXPECT_EQ(error.kind(), ErrorKind::NoConnection) << error.what();
        EXPECT_FALSE(error.detail().isEmpty());
        EXPECT_LT(timer.elapsed(), 4500);
    }
    std::unique_ptr<Relay> m_relay;
};

TEST_P(LostConnection, ServerNeverResponds) {
    m_relay->isSilent = true;
    expectLost([&] { engines::shops::OdbcConnection::connect(settings()); });
}

TEST_P(LostConnection, ServerStopsRespondingDuringAStatement) {
    test::OdbcDatabase database(settings());
    EXPECT_EQ(test::rows(database, "select 1"), QStringList{"1"});
    m_relay->isSilent = true;
    expectLost([&] { test::rows(database, "select 2"); });
    m_relay->isSilent = false;
    EXPECT_EQ(test::rows(database, "select 3"), QStringList{"3"});
}

TEST_P(LostConnection, DroppedConnectionIsReportedOnceAndRestored) {
    test::OdbcDatabase database(settings());
    data::TUniQuery query(&database);
    query.sql().setText("select :a + 1");
    query.paramByName("a").setInteger(1);
    query.open();
    query.close();
    m_relay->drops = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    expectLost([&] { query.open(); });
    query.open();
    EXPECT_EQ(query.recordCount(), 1);
    // a transaction is not continued on a new connection
    expectLost([&] {
        database.inTransaction([&] {
            m_relay->drops = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            EXPECT_THROW(query.open(), DataError);
            query.open();
        });
    });
    EXPECT_EQ(test::rows(database, "select 4"), QStringList{"4"});
}

INSTANTIATE_TEST_SUITE_P(Servers, LostConnection, ::testing::ValuesIn(kServers),
                         [](const auto& server) { return std::string(server.param.name); });

TEST(OdbcFailures, UnknownDataSource) {
    engines::shops::OdbcSettings settings;
    settings.dataSource = QStringLiteral("taksavaihe-puuttuu");
    const DataError error =
        test::thrownBy([&] { engines::shops::OdbcConnection::connect(settings); });
    EXPECT_EQ(error.kind(), ErrorKind::NoConnection);
    EXPECT_EQ(error.table(), settings.dataSource);
    EXPECT_TRUE(error.finnish().contains(u"Tarkista")) << error.what();
}

}  // namespace
