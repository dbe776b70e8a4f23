#pragma once

#include <gtest/gtest.h>

#include <QStringList>
#include <algorithm>
#include <functional>

#include "vatchange/ports/run_ports.h"

namespace test {

/// Records a run's output. A question without a prepared answer fails the test.
class RecordingPorts : public vatchange::RunPorts {
  public:
    bool isUnattended = true;
    bool skipEarlyDate = false;
    QString program = QStringLiteral("run_tests");
    QString definition = QStringLiteral("Koe");
    QStringList answers;  ///< to the next questions: "yes" or "no"
    std::function<bool()> stop;
    std::function<void(const QString& text)> onStatus;

    QStringList lines;     ///< the change log, messages included
    QStringList messages;  ///< texts of NaytaViesti
    QStringList questions;
    QStringList statuses;

    bool hasLine(const QString& text) const { return lines.contains(text); }
    qsizetype linesWith(const QString& start) const {
        return std::count_if(lines.begin(), lines.end(),
                             [&start](const QString& line) { return line.startsWith(start); });
    }

    bool unattended() const override { return isUnattended; }
    void NaytaViesti(const QString& text) override {
        messages += text;
        lines += text;
    }
    void showMessage(const QString& text) override { messages += text; }
    bool ask(const QString& text) override {
        questions += text;
        EXPECT_FALSE(isUnattended) << text.toStdString();
        if (answers.isEmpty()) {
            ADD_FAILURE() << "unexpected question: " << text.toStdString();
            return false;
        }
        return answers.takeFirst() == QLatin1String("yes");
    }
    void log(const QString& line) override { lines += line; }
    void status(const QString& text) override {
        statuses += text;
        if (onStatus)
            onStatus(text);
    }
    void progress(qint64 done, qint64 total) override { EXPECT_LE(done, total); }
    void processEvents() override {}
    bool cancelled() const override { return stop && stop(); }
    QString programFileName() const override { return program; }
    bool skipEarlyDateCheck() const override { return skipEarlyDate; }
    QString definitionName() const override { return definition; }
};

}  // namespace test
