// Answers the program's boxes from a script: an unexpected message, or one left over, fails the
// test. SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"

#include <QStringList>
#include <deque>
#include <functional>
#include <vector>

/// Installed for its lifetime. Expectations are met in order; `*` at the end of an expected text
/// stands for any rest.
class ScriptedMessages : public MessageHandler {
public:
    ScriptedMessages();
    ~ScriptedMessages() override;

    void expect(MessageLevel level, const QString& text);
    void expectQuestion(const QString& text, bool answer);
    void expectAnnouncement(const QString& text);
    void expectFileChoice(const QString& title, const QString& answer);
    /// All messages so far, one for each line end.
    [[nodiscard]] QStringList shown() const { return shown_; }
    /// Takes any message without complaint; what was shown stands in shown(). For fuzzing loops.
    void acceptAnything() { acceptAnything_ = true; }
    /// What the operator does before answering a question.
    std::function<void()> onQuestion;

    void show(MessageLevel level, const QString& text) override;
    void showAside(MessageLevel level, const QString& text) override { show(level, text); }
    bool ask(const QString& text) override;
    void announce(const QString& title, const QString& text, const QString& button) override;
    QString chooseFileToOpen(const QString& title, const QString& folder,
                             const QString& filter) override;
    /// Answers at once.
    void chooseFileToSave(const QString& title, const QString& folder, const QString& filter,
                          FileChosen chosen) override;

private:
    struct Expectation {
        QString kind;
        QString text;
        QString answer;
    };
    QString meet(const QString& kind, const QString& text);

    std::deque<Expectation> expected_;
    QStringList shown_;
    bool acceptAnything_ = false;
    MessageHandler* previous_;
};

/// Records the end of the program instead of leaving the process.
class RecordedProgramEnd {
public:
    RecordedProgramEnd();
    ~RecordedProgramEnd();
    /// Exit statuses in order.
    std::vector<int> statuses;
};
