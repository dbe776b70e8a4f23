#include "vatchange/run/webshop_marks.h"

#include "vatchange/run/run_context.h"

namespace vatchange {

WebShopMarks::WebShopMarks(data::Database& database, RunPorts& ports)
    : m_database(database), m_ports(ports) {}

void WebShopMarks::mark(const QString& productNumber, QChar letter) {
    try {
        if (!m_writer)
            m_writer = std::make_unique<framework::WebShopMarkWriter>(m_database);
        m_writer->mark(QStringLiteral("TUOTE"), productNumber, letter,
                       [this](const QString& text) { report(text); });
    } catch (const std::exception& error) {
        report(QStringLiteral("VIRHE: TryPost -> ") + errorText(error) + u' ');
    }
}

void WebShopMarks::report(const QString& text) {
    if (m_failed)
        m_ports.log(text);
    else
        m_ports.NaytaViesti(text);
    m_failed = true;
}

}  // namespace vatchange
