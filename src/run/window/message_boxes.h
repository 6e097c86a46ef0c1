// Messages, questions, file and colour choices on the screen.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"

/// Shows modal boxes over the active window. Installed for the whole program by main().
class MessageBoxes : public MessageHandler {
public:
    void show(MessageLevel level, const QString& text) override;
    void showAside(MessageLevel level, const QString& text) override;
    [[nodiscard]] bool ask(const QString& text) override;
    void announce(const QString& title, const QString& text, const QString& button) override;
    [[nodiscard]] QString chooseFileToOpen(const QString& title, const QString& folder,
                                           const QString& filter) override;
    void chooseFileToSave(const QString& title, const QString& folder, const QString& filter,
                          FileChosen chosen) override;
};
