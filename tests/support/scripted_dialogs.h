#pragma once

#include <gtest/gtest.h>

#include <QStringList>
#include <deque>
#include <functional>

#include "framework/ui/dialogs.h"
#include "framework/ui/mail.h"

namespace test {

/// Answers dialogs. A test states the expected dialogs and answers in order; an unexpected or a
/// missing dialog fails it.
class ScriptedDialogs : public framework::DialogHandler {
  public:
    ScriptedDialogs() : m_previous(framework::Dialogs::setHandler(this)) {}
    ~ScriptedDialogs() override {
        framework::Dialogs::setHandler(m_previous);
        for (const Expected& dialog : m_expected)
            ADD_FAILURE() << "this dialog never came: " << dialog.text.toStdString();
    }
    ScriptedDialogs(const ScriptedDialogs&) = delete;
    ScriptedDialogs& operator=(const ScriptedDialogs&) = delete;

    void expectMessage(const QString& text) { m_expected.push_back({text, false, {}}); }
    /// A message whose text depends on the machine; lastText() returns it.
    void expectAnyMessage() { m_expected.push_back({{}, false, {}, true}); }
    void expectQuestion(const QString& text, bool yes) { m_expected.push_back({text, yes, {}}); }
    /// A question whose text depends on the machine.
    void expectAnyQuestion(bool yes) { m_expected.push_back({{}, yes, {}, true}); }
    void expectFileChoice(const QString& fileName) { m_expected.push_back({{}, false, fileName}); }
    /// `answer`: the text of the button to press; its buttons are lastAnswers().
    void expectChoice(const QString& text, const QString& answer) {
        m_expected.push_back({text, false, answer});
    }
    void expectAnyChoice(const QString& answer) { m_expected.push_back({{}, false, answer, true}); }
    const QStringList& lastAnswers() const { return m_lastAnswers; }
    bool allShown() const { return m_expected.empty(); }
    const QString& lastText() const { return m_lastText; }
    framework::MessageKind lastKind() const { return m_lastKind; }

    bool isInteractive() const override { return true; }
    void message(QWidget*, framework::MessageKind kind, const QString& text) override {
        m_lastKind = kind;
        next(text);
    }
    bool ask(QWidget*, const QString& text) override { return next(text).yes; }
    int choose(QWidget*, const QString& text, const QStringList& answers) override {
        m_lastAnswers = answers;
        const qsizetype answer = answers.indexOf(next(text).fileName);
        EXPECT_GE(answer, 0);
        return static_cast<int>(answer < 0 ? answers.size() - 1 : answer);
    }
    /// What a person does in a window; without a script such windows are accepted as they are.
    std::function<int(QDialog& dialog)> inDialog = [](QDialog&) { return QDialog::Accepted; };
    int exec(QDialog& dialog) override { return inDialog(dialog); }
    QString saveFileName(QWidget*, const QString&, const QString&, const QString&) override {
        return next({}).fileName;
    }
    QString openFileName(QWidget*, const QString&, const QString&, const QString&) override {
        return next({}).fileName;
    }
    QString folder(QWidget*, const QString&, const QString&) override { return next({}).fileName; }

  private:
    struct Expected {
        QString text;
        bool yes = false;
        QString fileName;
        bool anyText = false;
    };
    Expected next(const QString& text) {
        if (m_expected.empty()) {
            ADD_FAILURE() << "unexpected dialog: " << text.toStdString();
            return {};
        }
        const Expected dialog = m_expected.front();
        m_expected.pop_front();
        m_lastText = text;
        if (!dialog.anyText) {
            EXPECT_EQ(text.toStdString(), dialog.text.toStdString());
        }
        return dialog;
    }

    framework::DialogHandler* m_previous;
    std::deque<Expected> m_expected;
    QString m_lastText;
    QStringList m_lastAnswers;
    framework::MessageKind m_lastKind = framework::MessageKind::Information;
};

/// Records what would go to the mail program or the browser.
class RecordedDesktop : public framework::Desktop {
  public:
    RecordedDesktop() : m_previous(setInstance(this)) {}
    ~RecordedDesktop() override { setInstance(m_previous); }
    Outcome run(const QString& program, const QStringList& parameters) override {
        EXPECT_EQ(program, QStringLiteral("xdg-email"));
        arguments = parameters;
        return outcome;
    }
    bool open(const QUrl& address) override {
        opened.append(address);
        return opens;
    }
    Outcome sendThroughSystem(const QString&, const QString&, const QString&) override {
        return Outcome::NotThere;
    }

    Outcome outcome = Outcome::Done;
    bool opens = true;
    QStringList arguments;
    QList<QUrl> opened;

  private:
    Desktop* m_previous;
};

}  // namespace test
