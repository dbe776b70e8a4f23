#include "vatchange/run/webshop_marks.h"

namespace vatchange {

WebShopMarks::WebShopMarks(data::Database& database, RunPorts& ports)
    : m_ports(ports), m_writer(database) {}

bool WebShopMarks::mark(const QString& productNumber, QChar letter) {
    bool done = true;
    m_writer.mark(QStringLiteral("TUOTE"), productNumber, letter, [&](const QString& text) {
        done = false;
        if (m_failure.isEmpty()) {
            m_failure = text;
            m_ports.NaytaViesti(text);
        } else {
            m_ports.log(text);
        }
    });
    if (done)
        ++m_written;
    return done;
}

}  // namespace vatchange
