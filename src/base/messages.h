// What the program says to the operator and asks of them: one seam for every box and file chooser.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>

enum class MessageLevel { Information, Warning, Critical };

/// Takes the path that the operator chose.
using FileChosen = std::function<void(const QString& path)>;

/// Shows messages. The program's window shows modal boxes; a test answers from a script.
class MessageHandler {
public:
    virtual ~MessageHandler() = default;
    /// Shows a modal box; a busy cursor, if one is set, is restored first.
    virtual void show(MessageLevel level, const QString& text) = 0;
    /// Shows a box that waits for nobody: for what a side task has to tell while a run goes on.
    virtual void showAside(MessageLevel level, const QString& text) = 0;
    /// A question with the buttons Yes and No; true for Yes.
    [[nodiscard]] virtual bool ask(const QString& text) = 0;
    /// A modal box with a title and one default button that bears `button`.
    virtual void announce(const QString& title, const QString& text, const QString& button) = 0;
    /// Full path of an existing file, or an empty string when the operator cancels.
    [[nodiscard]] virtual QString chooseFileToOpen(const QString& title, const QString& folder,
                                                   const QString& filter) = 0;
    /// Opens a chooser for a file to write and returns at once: a run goes on meanwhile. `chosen`
    /// is called with the full path, which bears the extension of the filter; not at all when the
    /// operator cancels or does not want to replace an existing file.
    virtual void chooseFileToSave(const QString& title, const QString& folder,
                                  const QString& filter, FileChosen chosen) = 0;
};

/// Installs the handler, which is not owned; nullptr restores the built-in one, which prints to the
/// standard error output and answers every question with No. Returns the previous one.
MessageHandler* installMessageHandler(MessageHandler* handler);

void showInformation(const QString& text);
void showWarning(const QString& text);
void showCritical(const QString& text);
void showInformationAside(const QString& text);
void showWarningAside(const QString& text);
[[nodiscard]] bool askQuestion(const QString& text);
void announce(const QString& title, const QString& text, const QString& button);
[[nodiscard]] QString chooseFileToOpen(const QString& title, const QString& folder,
                                       const QString& filter);
void chooseFileToSave(const QString& title, const QString& folder, const QString& filter,
                      FileChosen chosen);
