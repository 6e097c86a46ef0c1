// Messages, questions, inputs, choices of files and colours on the screen.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"

/// Nobody is there to answer any more: cancels every dialog that is open, also those that show
/// progress and those that are waited for, and leaves messages to the built-in handler.
void cancelDialogsForGood();

/// Shows boxes of the toolkit over the active window. Installed for the whole program by main().
/// Texts are plain text, whatever characters a file name in them holds. When the window below a box
/// goes, the box goes with it and counts as cancelled.
class MessageBoxes : public MessageHandler {
public:
    /// Tells whether messages of a level, those of plug-ins too, are modeless now: a run goes on,
    /// and is saved, whether somebody answers or not.
    std::function<bool(MessageLevel)> isModeless = [](MessageLevel) { return false; };

    void show(MessageLevel level, const QString& text, const QString& title) override;
    void showModeless(MessageLevel level, const QString& text) override;
    [[nodiscard]] bool ask(const QString& text, const QString& title,
                           DefaultAnswer defaultAnswer) override;
    void announce(const QString& title, const QString& text, const QString& button) override;
    [[nodiscard]] std::optional<int> inputInteger(const InputTexts& texts, int start,
                                                  const IntegerBounds& bounds) override;
    [[nodiscard]] std::optional<double> inputNumber(const InputTexts& texts, double start,
                                                    const NumberBounds& bounds) override;
    [[nodiscard]] std::optional<QString> inputText(const InputTexts& texts,
                                                   const QString& start) override;
    [[nodiscard]] QString waitForFileToOpen(const QString& title, const QString& place,
                                            const QString& filter) override;
    [[nodiscard]] QString waitForFileToSave(const QString& title, const QString& place,
                                            const QString& filter) override;
    void chooseFileToOpen(const QString& title, const QString& place, const QString& filter,
                          FileChosen chosen, OpenChooser* subject) override;
    void chooseFilesToOpen(const QString& title, const QString& place, const QString& filter,
                           FilesChosen chosen, OpenChooser* subject) override;
    void chooseFileToSave(const QString& title, const QString& place, const QString& filter,
                          FileChosen chosen, OpenChooser* subject) override;
    void chooseColor(const QString& title, const RgbColor& start, ColorChosen chosen,
                     OpenChooser& subject) override;
};
