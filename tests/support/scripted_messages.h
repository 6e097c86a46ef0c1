// Scripted answers to the program's boxes: an unexpected message, or one left over, fails the test.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"

#include <QStringList>
#include <deque>
#include <functional>
#include <variant>
#include <vector>

/// Installed for its lifetime. Expectations are met in order; `*` at the end of an expected text
/// matches any rest. Inputs are cancelled.
class ScriptedMessages : public UnattendedMessages {
public:
    ScriptedMessages();
    ~ScriptedMessages() override;

    /// A message, modal or modeless, with this title.
    void expect(MessageLevel level, const QString& text, const QString& title = programTitle);
    void expectWarning(const QString& text) { expect(MessageLevel::Warning, text); }
    void expectCritical(const QString& text) { expect(MessageLevel::Critical, text); }
    void expectInformation(const QString& text) { expect(MessageLevel::Information, text); }
    void expectQuestion(const QString& text, bool answer, const QString& title = programTitle);
    void expectAnnouncement(const QString& text);
    /// Of a file to open or to save, blocking or modeless; an empty answer cancels. Several files
    /// to open are joined by line ends.
    void expectFileChoice(const QString& title, const QString& answer);
    void expectColorChoice(const QString& title, const RgbColor& answer);
    /// All messages so far, one for each line end.
    [[nodiscard]] QStringList shown() const { return shown_; }
    /// Those of them that were modeless.
    [[nodiscard]] QStringList shownModeless() const { return shownModeless_; }
    /// Accepts any message, which is listed in shown(), and answers questions.
    void acceptAnything(bool answer = false) {
        acceptAnything_ = true;
        answerToAnything_ = answer;
    }
    /// What the operator does before answering a question.
    std::function<void()> onQuestion;

    void show(MessageLevel level, const QString& text, const QString& title) override;
    void showModeless(MessageLevel level, const QString& text) override {
        shownModeless_ << text;
        show(level, text, programTitle);
    }
    bool ask(const QString& text, const QString& title, DefaultAnswer) override;
    void announce(const QString& title, const QString& text, const QString& button) override;
    QString waitForFileToOpen(const QString& title, const QString& place,
                              const QString& filter) override;
    QString waitForFileToSave(const QString& title, const QString& place,
                              const QString& filter) override;
    /// These answer at once.
    void chooseFileToOpen(const QString& title, const QString& place, const QString& filter,
                          FileChosen chosen, OpenChooser* subject) override;
    void chooseFilesToOpen(const QString& title, const QString& place, const QString& filter,
                           FilesChosen chosen, OpenChooser* subject) override;
    void chooseFileToSave(const QString& title, const QString& place, const QString& filter,
                          FileChosen chosen, OpenChooser* subject) override;
    void chooseColor(const QString& title, const RgbColor& start, ColorChosen chosen,
                     OpenChooser& subject) override;

private:
    /// Without a value the request is cancelled.
    using Answer = std::variant<std::monostate, bool, QString, RgbColor>;
    struct Expectation {
        QString kind;
        QString text;
        Answer answer = {};
    };
    template<typename Value>
    [[nodiscard]] std::optional<Value> meet(const QString& kind, const QString& text);
    Answer meetNext(const QString& kind, const QString& text);

    std::deque<Expectation> expected_;
    QStringList shown_;
    QStringList shownModeless_;
    bool acceptAnything_ = false;
    bool answerToAnything_ = false;
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
