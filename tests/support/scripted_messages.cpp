// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/scripted_messages.h"

#include "base/program_end.h"

#include <gtest/gtest.h>

namespace {

/// What a message is, with its title where that is not the program's.
QString kindOf(const QString& kind, const QString& title) {
    return title == programTitle ? kind : kind + " titled " + title;
}

QString kindOf(MessageLevel level, const QString& title) {
    return kindOf(QStringList{"information", "warning", "critical"}[qsizetype(level)], title);
}

} // namespace

ScriptedMessages::ScriptedMessages() : previous_(installMessageHandler(this)) {}

ScriptedMessages::~ScriptedMessages() {
    installMessageHandler(previous_);
    for (const Expectation& left : expected_)
        ADD_FAILURE() << "never shown, " << left.kind.toStdString() << ": "
                      << left.text.toStdString();
}

void ScriptedMessages::expect(MessageLevel level, const QString& text, const QString& title) {
    expected_.push_back({kindOf(level, title), text});
}

void ScriptedMessages::expectQuestion(const QString& text, bool answer, const QString& title) {
    expected_.push_back({kindOf("question", title), text, answer});
}

void ScriptedMessages::expectAnnouncement(const QString& text) {
    expected_.push_back({"announcement", text});
}

void ScriptedMessages::expectFileChoice(const QString& title, const QString& answer) {
    expected_.push_back({"file choice", title, answer});
}

void ScriptedMessages::expectColorChoice(const QString& title, const RgbColor& answer) {
    expected_.push_back({"colour choice", title, answer});
}

void ScriptedMessages::show(MessageLevel level, const QString& text, const QString& title) {
    meetNext(kindOf(level, title), text);
}

bool ScriptedMessages::ask(const QString& text, const QString& title, DefaultAnswer) {
    if (onQuestion)
        onQuestion();
    return meet<bool>(kindOf("question", title), text).value_or(false);
}

void ScriptedMessages::announce(const QString&, const QString& text, const QString&) {
    meetNext("announcement", text);
}

QString ScriptedMessages::waitForFileToOpen(const QString& title, const QString&, const QString&) {
    return meet<QString>("file choice", title).value_or(QString());
}

QString ScriptedMessages::waitForFileToSave(const QString& title, const QString&, const QString&) {
    return meet<QString>("file choice", title).value_or(QString());
}

void ScriptedMessages::chooseFileToOpen(const QString& title, const QString& place,
                                        const QString& filter, FileChosen chosen,
                                        OpenChooser* subject) {
    chooseFileToSave(title, place, filter, std::move(chosen), subject);
}

void ScriptedMessages::chooseFilesToOpen(const QString& title, const QString&, const QString&,
                                         FilesChosen chosen, OpenChooser*) {
    const auto answer = meet<QString>("file choice", title);
    if (answer && !answer->isEmpty())
        chosen(answer->split('\n'));
}

void ScriptedMessages::chooseFileToSave(const QString& title, const QString&, const QString&,
                                        FileChosen chosen, OpenChooser*) {
    const auto answer = meet<QString>("file choice", title);
    if (answer && !answer->isEmpty())
        chosen(*answer);
}

void ScriptedMessages::chooseColor(const QString& title, const RgbColor&, ColorChosen chosen,
                                   OpenChooser&) {
    if (const auto answer = meet<RgbColor>("colour choice", title))
        chosen(*answer);
}

template<typename Value>
std::optional<Value> ScriptedMessages::meet(const QString& kind, const QString& text) {
    const Answer answer = meetNext(kind, text);
    const auto* value = std::get_if<Value>(&answer);
    return value ? std::optional<Value>(*value) : std::nullopt;
}

ScriptedMessages::Answer ScriptedMessages::meetNext(const QString& kind, const QString& text) {
    shown_ << text;
    if (acceptAnything_)
        return answerToAnything_;
    const Expectation next = expected_.empty() ? Expectation{"nothing", {}} : expected_.front();
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
