// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"

#include <cstdio>
#include <utility>

namespace {

// Serves before a window exists, and programs that have none.
class StandardErrorHandler : public MessageHandler {
public:
    void show(MessageLevel, const QString& text) override { print(text); }
    void showAside(MessageLevel, const QString& text) override { print(text); }
    bool ask(const QString& text) override {
        print(text);
        return false;
    }
    void announce(const QString&, const QString& text, const QString&) override { print(text); }
    QString chooseFileToOpen(const QString&, const QString&, const QString&) override { return {}; }
    void chooseFileToSave(const QString&, const QString&, const QString&, FileChosen) override {}

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

} // namespace

MessageHandler* installMessageHandler(MessageHandler* handler) {
    MessageHandler* previous = currentHandler();
    currentHandler() = handler ? handler : &builtInHandler();
    return previous;
}

void showInformation(const QString& text) {
    currentHandler()->show(MessageLevel::Information, text);
}

void showWarning(const QString& text) {
    currentHandler()->show(MessageLevel::Warning, text);
}

void showCritical(const QString& text) {
    currentHandler()->show(MessageLevel::Critical, text);
}

void showInformationAside(const QString& text) {
    currentHandler()->showAside(MessageLevel::Information, text);
}

void showWarningAside(const QString& text) {
    currentHandler()->showAside(MessageLevel::Warning, text);
}

bool askQuestion(const QString& text) {
    return currentHandler()->ask(text);
}

void announce(const QString& title, const QString& text, const QString& button) {
    currentHandler()->announce(title, text, button);
}

QString chooseFileToOpen(const QString& title, const QString& folder, const QString& filter) {
    return currentHandler()->chooseFileToOpen(title, folder, filter);
}

void chooseFileToSave(const QString& title, const QString& folder, const QString& filter,
                      FileChosen chosen) {
    currentHandler()->chooseFileToSave(title, folder, filter, std::move(chosen));
}
