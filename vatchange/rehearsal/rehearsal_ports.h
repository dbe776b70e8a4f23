#pragma once

#include "company/company.h"
#include "vatchange/ports/run_ports.h"

namespace vatchange {

/// The ports of a rehearsed run: messages go to its log only; questions and progress go to other
/// ports, with the real company in use, because windows go on with that.
class RehearsalPorts : public RunPorts {
  public:
    RehearsalPorts(RunPorts& ports, company::Company company)
        : m_ports(ports), m_company(std::move(company)) {}

    bool unattended() const override { return m_ports.unattended(); }
    void NaytaViesti(const QString& text) override { log(text); }
    void stepFinished(const QString& text) override { log(text); }
    void plan(const std::vector<PlannedStep>& steps) override { m_ports.plan(steps); }
    void beginStep(RunStep step) override { m_ports.beginStep(step); }
    void showMessage(const QString& text) override;
    bool ask(const QString& text) override;
    void log(const QString& line) override;
    void status(const QString& text) override { m_ports.status(text); }
    void stepStatus(const QString& text) override;
    void progress(qint64 done, qint64 total) override { m_ports.progress(done, total); }
    void processEvents() override;
    bool cancelled() const override { return m_ports.cancelled(); }
    QString programFileName() const override { return m_ports.programFileName(); }
    bool skipEarlyDateCheck() const override { return m_ports.skipEarlyDateCheck(); }
    QString definitionName() const override { return m_ports.definitionName(); }

  private:
    RunPorts& m_ports;
    const company::Company m_company;  ///< the real one
};

}  // namespace vatchange
