// What the program says to the operator and asks of them: one seam for every box, chooser and
// input. SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"

#include <QString>
#include <functional>
#include <optional>

enum class MessageLevel { Information, Warning, Critical };

/// Takes the path that the operator chose.
using FileChosen = std::function<void(const QString& path)>;
/// Takes the colour that the operator chose.
using ColorChosen = std::function<void(const RgbColor& color)>;

/// The title of a box that is given no other.
inline const QString programTitle = QStringLiteral("Velo-Cortivo");

/// What an input box shows: its title, and the text above the field.
struct InputTexts {
    QString title;
    QString text;
};

/// Bounds of an integer; a field that is stepped goes by 1.
struct IntegerBounds {
    int minimum = 0;
    int maximum = 0;
};

/// Bounds of a real number, and the digits behind its decimal point.
struct NumberBounds {
    double minimum = 0.0;
    double maximum = 0.0;
    int decimals = 2;
};

/// The chooser that is open for a subject, at most one. It closes, and calls nobody any more, when
/// this goes, when another opens for the same subject, or with close().
class OpenChooser {
public:
    OpenChooser() = default;
    ~OpenChooser() { close(); }
    OpenChooser(const OpenChooser&) = delete;
    OpenChooser& operator=(const OpenChooser&) = delete;

    void close();
    /// For handlers: takes over what closes the chooser, which may have closed before.
    void hold(std::function<void()> closeChooser);

private:
    std::function<void()> closeChooser_;
};

/// Shows messages. The program's window shows modal boxes; a test answers from a script.
class MessageHandler {
public:
    virtual ~MessageHandler() = default;
    /// Shows a modal box. A busy cursor, if one is set, is off while it is up.
    virtual void show(MessageLevel level, const QString& text, const QString& title) = 0;
    /// Shows a box that waits for nobody: for what a side task has to tell while a run goes on.
    virtual void showModeless(MessageLevel level, const QString& text) = 0;
    /// A question with the buttons Yes and No; true for Yes.
    [[nodiscard]] virtual bool ask(const QString& text, const QString& title) = 0;
    /// A modal box with a title and one default button that bears `button`.
    virtual void announce(const QString& title, const QString& text, const QString& button) = 0;

    /// These wait for the operator, so a run stands still meanwhile. `start` lies within the
    /// bounds. Nothing when the operator cancels.
    [[nodiscard]] virtual std::optional<int> inputInteger(const InputTexts& texts, int start,
                                                          const IntegerBounds& bounds) = 0;
    [[nodiscard]] virtual std::optional<double> inputNumber(const InputTexts& texts, double start,
                                                            const NumberBounds& bounds) = 0;
    [[nodiscard]] virtual std::optional<QString> inputText(const InputTexts& texts,
                                                           const QString& start) = 0;
    [[nodiscard]] virtual QString chooseFileToOpen(const QString& title, const QString& place,
                                                   const QString& filter) = 0;
    [[nodiscard]] virtual QString waitForFileToSave(const QString& title, const QString& place,
                                                    const QString& filter) = 0;

    /// These open a chooser and return at once. A `subject` is free; it may be nullptr.
    virtual void chooseFileToSave(const QString& title, const QString& place, const QString& filter,
                                  FileChosen chosen, OpenChooser* subject) = 0;
    virtual void chooseColor(const QString& title, const RgbColor& start, ColorChosen chosen,
                             OpenChooser& subject) = 0;
};

/// Nobody is there: nothing is shown, every question is answered with No, and all else cancelled.
class UnattendedMessages : public MessageHandler {
public:
    void show(MessageLevel, const QString&, const QString&) override {}
    void showModeless(MessageLevel, const QString&) override {}
    bool ask(const QString&, const QString&) override { return false; }
    void announce(const QString&, const QString&, const QString&) override {}
    std::optional<int> inputInteger(const InputTexts&, int, const IntegerBounds&) override {
        return {};
    }
    std::optional<double> inputNumber(const InputTexts&, double, const NumberBounds&) override {
        return {};
    }
    std::optional<QString> inputText(const InputTexts&, const QString&) override { return {}; }
    QString chooseFileToOpen(const QString&, const QString&, const QString&) override { return {}; }
    QString waitForFileToSave(const QString&, const QString&, const QString&) override {
        return {};
    }
    void chooseFileToSave(const QString&, const QString&, const QString&, FileChosen,
                          OpenChooser*) override {}
    void chooseColor(const QString&, const RgbColor&, ColorChosen, OpenChooser&) override {}
};

/// Installs the handler, which is not owned; nullptr restores the built-in one, which is unattended
/// but prints messages to the standard error output. Returns the previous one.
MessageHandler* installMessageHandler(MessageHandler* handler);

void showInformation(const QString& text, const QString& title = programTitle);
void showWarning(const QString& text, const QString& title = programTitle);
void showCritical(const QString& text, const QString& title = programTitle);
void showModelessInformation(const QString& text);
void showModelessWarning(const QString& text);
[[nodiscard]] bool askQuestion(const QString& text, const QString& title = programTitle);
void announce(const QString& title, const QString& text, const QString& button);

/// Ask for a value and wait for it: nothing when the operator cancels, or when no value can lie
/// within the bounds. `start` is brought within the bounds first; one that is no number becomes
/// the minimum.
[[nodiscard]] std::optional<int> askForInteger(const InputTexts& texts, int start,
                                               const IntegerBounds& bounds);
[[nodiscard]] std::optional<double> askForNumber(const InputTexts& texts, double start,
                                                 const NumberBounds& bounds);
[[nodiscard]] std::optional<QString> askForText(const InputTexts& texts, const QString& start);

/// Full path of an existing file, or an empty string when the operator cancels. In all choosers of
/// files `place` is the folder to begin in, or a path whose file name is proposed, and `filter`
/// reads "Bitmaps (*.bmp)", several joined by ";;".
[[nodiscard]] QString chooseFileToOpen(const QString& title, const QString& place,
                                       const QString& filter);
/// Full path of a file to write, which bears an extension of the filter, or an empty string when
/// the operator cancels or does not want to replace an existing file. Waits, so it is only for
/// callers that must return the path.
[[nodiscard]] QString waitForFileToSave(const QString& title, const QString& place,
                                        const QString& filter);
/// The same, but returns at once: a run goes on meanwhile. `chosen` is called with the path, or not
/// at all. With a subject the chooser, and its question about an existing file, close when the
/// subject goes.
void chooseFileToSave(const QString& title, const QString& place, const QString& filter,
                      FileChosen chosen, OpenChooser* subject = nullptr);
/// Opens a chooser that begins with the colour `start` and returns at once. `chosen` is called when
/// the operator takes a colour.
void chooseColor(const QString& title, const RgbColor& start, ColorChosen chosen,
                 OpenChooser& subject);
