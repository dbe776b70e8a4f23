#include "vatchange/rehearsal/rehearsal_ports.h"

#include "company/logs.h"

namespace vatchange {

using company::CompanySubstitution;

void RehearsalPorts::showMessage(const QString& text) {
    const CompanySubstitution real(m_company);
    m_ports.showMessage(text);
}

bool RehearsalPorts::ask(const QString& text) {
    const CompanySubstitution real(m_company);
    return m_ports.ask(text);
}

void RehearsalPorts::log(const QString& line) {
    company::WriteAlvMuutosLog(line);
}

void RehearsalPorts::stepStatus(const QString& text) {
    const CompanySubstitution real(m_company);
    m_ports.stepStatus(text);
}

void RehearsalPorts::processEvents() {
    const CompanySubstitution real(m_company);
    m_ports.processEvents();
}

}  // namespace vatchange
