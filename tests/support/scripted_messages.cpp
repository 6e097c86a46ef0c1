// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/scripted_messages.h"

#include "base/program_end.h"

#include <gtest/gtest.h>

namespace {

QString levelName(MessageLevel level) {
    return QStringList{"information", "warning", "critical"}[qsizetype(level)];
}

} // namespace

ScriptedMessages::ScriptedMessages() : previous_(installMessageHandler(this)) {}

ScriptedMessages::~ScriptedMessages() {
    installMessageHandler(previous_);
    for (const Expectation& left : expected_)
        ADD_FAILURE() << "never shown, " << left.kind.toStdString() << ": "
                      << left.text.toStdString();
}

void ScriptedMessages::expect(MessageLevel level, const QString& text) {
    expected_.push_back({levelName(level), text, {}});
}

void ScriptedMessages::expectQuestion(const QString& text, bool answer) {
    expected_.push_back({"question", text, answer ? "yes" : ""});
}

void ScriptedMessages::expectAnnouncement(const QString& text) {
    expected_.push_back({"announcement", text, {}});
}

void ScriptedMessages::expectFileChoice(const QString& title, const QString& answer) {
    expected_.push_back({"file choice", title, answer});
}

void ScriptedMessages::show(MessageLevel level, const QString& text) {
    meet(levelName(level), text);
}

bool ScriptedMessages::ask(const QString& text) {
    if (onQuestion)
        onQuestion();
    return meet("question", text) == "yes";
}

void ScriptedMessages::announce(const QString&, const QString& text, const QString&) {
    meet("announcement", text);
}

QString ScriptedMessages::chooseFileToOpen(const QString& title, const QString&, const QString&) {
    return meet("file choice", title);
}

void ScriptedMessages::chooseFileToSave(const QString& title, const QString&, const QString&,
                                        FileChosen chosen) {
    const QString answer = meet("file choice", title);
    if (!answer.isEmpty())
        chosen(answer);
}

QString ScriptedMessages::meet(const QString& kind, const QString& text) {
    shown_ << text;
    if (acceptAnything_)
        return {};
    const Expectation next = expected_.empty() ? Expectation{"nothing", {}, {}} : expected_.front();
    if (next.kind != kind ||
        (next.text.endsWith('*') ? !text.startsWith(next.text.chopped(1)) : text != next.text)) {
        ADD_FAILURE() << "unexpected " << kind.toStdString() << ": " << text.toStdString()
                      << "\nexpected " << next.kind.toStdString() << ": "
                      << next.text.toStdString();
        return {};
    }
    expected_.pop_front();
    return next.answer;
}

RecordedProgramEnd::RecordedProgramEnd() {
    installProgramEnd([this](int status) { statuses.push_back(status); });
}

RecordedProgramEnd::~RecordedProgramEnd() {
    installProgramEnd({});
}
