// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace {

// Used before a window exists, and by programs without one.
class StandardErrorHandler : public UnattendedMessages {
public:
    void show(MessageLevel, const QString& text, const QString&) override { print(text); }
    void showModeless(MessageLevel, const QString& text) override { print(text); }
    bool ask(const QString& text, const QString&, DefaultAnswer) override {
        print(text);
        return false;
    }
    void announce(const QString&, const QString& text, const QString&) override { print(text); }

private:
    static void print(const QString& text) {
        std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    }
};

StandardErrorHandler& builtInHandler() {
    static StandardErrorHandler handler;
    return handler;
}

MessageHandler*& currentHandler() {
    static MessageHandler* handler = &builtInHandler();
    return handler;
}

int modelessScopes = 0; // of the one thread that shows messages

void showUnlessModeless(MessageLevel level, const QString& text, const QString& title) {
    if (modelessScopes > 0)
        currentHandler()->showModeless(level, text);
    else
        currentHandler()->show(level, text, title);
}

} // namespace

ModelessMessages::ModelessMessages() {
    ++modelessScopes;
}

ModelessMessages::~ModelessMessages() {
    --modelessScopes;
}

void OpenChooser::close() {
    // Closing may re-enter this function.
    if (const auto closeChooser = std::exchange(closeChooser_, nullptr))
        closeChooser();
}

void OpenChooser::hold(std::function<void()> closeChooser) {
    close();
    closeChooser_ = std::move(closeChooser);
}

MessageHandler* installMessageHandler(MessageHandler* handler) {
    MessageHandler* previous = currentHandler();
    currentHandler() = handler ? handler : &builtInHandler();
    return previous;
}

void showInformation(const QString& text, const QString& title) {
    showUnlessModeless(MessageLevel::Information, text, title);
}

void showWarning(const QString& text, const QString& title) {
    showUnlessModeless(MessageLevel::Warning, text, title);
}

void showCritical(const QString& text, const QString& title) {
    currentHandler()->show(MessageLevel::Critical, text, title);
}

void showModelessInformation(const QString& text) {
    currentHandler()->showModeless(MessageLevel::Information, text);
}

void showModelessWarning(const QString& text) {
    currentHandler()->showModeless(MessageLevel::Warning, text);
}

bool askQuestion(const QString& text, const QString& title) {
    return currentHandler()->ask(text, title, DefaultAnswer::Yes);
}

bool askBeforeLoss(const QString& text) {
    return currentHandler()->ask(text, programTitle, DefaultAnswer::No);
}

void announce(const QString& title, const QString& text, const QString& button) {
    currentHandler()->announce(title, text, button);
}

std::optional<int> askForInteger(const InputTexts& texts, int start, const IntegerBounds& bounds) {
    if (bounds.minimum > bounds.maximum)
        return {};
    return currentHandler()->inputInteger(texts, std::clamp(start, bounds.minimum, bounds.maximum),
                                          bounds);
}

std::optional<double> askForNumber(const InputTexts& texts, double start,
                                   const NumberBounds& bounds) {
    if (!(bounds.minimum <= bounds.maximum)) // also if a bound is NaN
        return {};
    const auto within = [&bounds](double number) {
        return std::isnan(number) ? bounds.minimum
                                  : std::clamp(number, bounds.minimum, bounds.maximum);
    };
    // Rounding to the field's decimals may leave the bounds.
    const std::optional<double> number =
        currentHandler()->inputNumber(texts, within(start), bounds);
    return number ? std::optional(within(*number)) : std::nullopt;
}

std::optional<QString> askForText(const InputTexts& texts, const QString& start) {
    return currentHandler()->inputText(texts, start);
}

QString waitForFileToOpen(const QString& title, const QString& place, const QString& filter) {
    return currentHandler()->waitForFileToOpen(title, place, filter);
}

QString waitForFileToSave(const QString& title, const QString& place, const QString& filter) {
    return currentHandler()->waitForFileToSave(title, place, filter);
}

void chooseFileToOpen(const QString& title, const QString& place, const QString& filter,
                      FileChosen chosen, OpenChooser* subject) {
    if (subject)
        subject->close();
    currentHandler()->chooseFileToOpen(title, place, filter, std::move(chosen), subject);
}

void chooseFilesToOpen(const QString& title, const QString& place, const QString& filter,
                       FilesChosen chosen, OpenChooser* subject) {
    if (subject)
        subject->close();
    currentHandler()->chooseFilesToOpen(title, place, filter, std::move(chosen), subject);
}

void chooseFileToSave(const QString& title, const QString& place, const QString& filter,
                      FileChosen chosen, OpenChooser* subject) {
    if (subject)
        subject->close();
    currentHandler()->chooseFileToSave(title, place, filter, std::move(chosen), subject);
}

void chooseColor(const QString& title, const RgbColor& start, ColorChosen chosen,
                 OpenChooser& subject) {
    subject.close();
    currentHandler()->chooseColor(title, start, std::move(chosen), subject);
}
