#include "vatchange/run/webshop_marks.h"

namespace vatchange {

WebShopMarks::WebShopMarks(data::Database& database, RunPorts& ports)
    : m_ports(ports), m_writer(database) {}

void WebShopMarks::mark(const QString& productNumber, QChar letter) {
    m_writer.mark(QStringLiteral("TUOTE"), productNumber, letter, [this](const QString& text) {
        if (m_failed)
            m_ports.log(text);
        else
            m_ports.NaytaViesti(text);
        m_failed = true;
    });
}

}  // namespace vatchange
