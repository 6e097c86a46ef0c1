// Messages, questions, inputs and choosers: the one seam to the operator.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"

#include <QStringList>
#include <functional>
#include <optional>

enum class MessageLevel { Information, Warning, Critical };
enum class DefaultAnswer { Yes, No };

/// Takes the path that the operator chose.
using FileChosen = std::function<void(const QString& path)>;
/// Takes the paths that the operator chose, at least one.
using FilesChosen = std::function<void(const QStringList& paths)>;
/// Takes the colour that the operator chose.
using ColorChosen = std::function<void(const RgbColor& color)>;

/// The default title of a box.
inline const QString programTitle = QStringLiteral("Velo-Cortivo");

/// What an input box shows: its title, and the text above the field.
struct InputTexts {
    QString title;
    QString text;
};

/// Bounds of an integer; spin boxes step by 1.
struct IntegerBounds {
    int minimum = 0;
    int maximum = 0;
};

/// Bounds of a real number, and its number of decimals.
struct NumberBounds {
    double minimum = 0.0;
    double maximum = 0.0;
    int decimals = 2;
};

/// The open chooser of a subject, at most one. It closes without calling its callback when this
/// object is destroyed, when another chooser opens for the subject, or with close().
class OpenChooser {
public:
    OpenChooser() = default;
    ~OpenChooser() { close(); }
    OpenChooser(const OpenChooser&) = delete;
    OpenChooser& operator=(const OpenChooser&) = delete;

    void close();
    /// For handlers: sets the function that closes the chooser, which may be closed already.
    void hold(std::function<void()> closeChooser);

private:
    std::function<void()> closeChooser_;
};

/// Shows messages. The program's window shows modal boxes; a test answers from a script.
class MessageHandler {
public:
    virtual ~MessageHandler() = default;
    /// Shows a modal box. A busy cursor is hidden meanwhile.
    virtual void show(MessageLevel level, const QString& text, const QString& title) = 0;
    /// Shows a modeless box, for messages during a run.
    virtual void showModeless(MessageLevel level, const QString& text) = 0;
    /// A question with the buttons Yes and No; true for Yes. Return gives the default answer.
    [[nodiscard]] virtual bool ask(const QString& text, const QString& title,
                                   DefaultAnswer defaultAnswer) = 0;
    /// A modal box with a title and one default button labelled `button`.
    virtual void announce(const QString& title, const QString& text, const QString& button) = 0;

    /// These block, so a run stands still meanwhile. `start` is within the bounds. Nothing when the
    /// operator cancels.
    [[nodiscard]] virtual std::optional<int> inputInteger(const InputTexts& texts, int start,
                                                          const IntegerBounds& bounds) = 0;
    [[nodiscard]] virtual std::optional<double> inputNumber(const InputTexts& texts, double start,
                                                            const NumberBounds& bounds) = 0;
    [[nodiscard]] virtual std::optional<QString> inputText(const InputTexts& texts,
                                                           const QString& start) = 0;
    [[nodiscard]] virtual QString waitForFileToOpen(const QString& title, const QString& place,
                                                    const QString& filter) = 0;
    [[nodiscard]] virtual QString waitForFileToSave(const QString& title, const QString& place,
                                                    const QString& filter) = 0;

    /// These open a modeless chooser. `subject` has none open; it may be nullptr.
    virtual void chooseFileToOpen(const QString& title, const QString& place, const QString& filter,
                                  FileChosen chosen, OpenChooser* subject) = 0;
    virtual void chooseFilesToOpen(const QString& title, const QString& place,
                                   const QString& filter, FilesChosen chosen,
                                   OpenChooser* subject) = 0;
    virtual void chooseFileToSave(const QString& title, const QString& place, const QString& filter,
                                  FileChosen chosen, OpenChooser* subject) = 0;
    virtual void chooseColor(const QString& title, const RgbColor& start, ColorChosen chosen,
                             OpenChooser& subject) = 0;
};

/// Without an operator: shows nothing, answers questions with No and cancels everything else.
class UnattendedMessages : public MessageHandler {
public:
    void show(MessageLevel, const QString&, const QString&) override {}
    void showModeless(MessageLevel, const QString&) override {}
    bool ask(const QString&, const QString&, DefaultAnswer) override { return false; }
    void announce(const QString&, const QString&, const QString&) override {}
    std::optional<int> inputInteger(const InputTexts&, int, const IntegerBounds&) override {
        return {};
    }
    std::optional<double> inputNumber(const InputTexts&, double, const NumberBounds&) override {
        return {};
    }
    std::optional<QString> inputText(const InputTexts&, const QString&) override { return {}; }
    QString waitForFileToOpen(const QString&, const QString&, const QString&) override {
        return {};
    }
    QString waitForFileToSave(const QString&, const QString&, const QString&) override {
        return {};
    }
    void chooseFileToOpen(const QString&, const QString&, const QString&, FileChosen,
                          OpenChooser*) override {}
    void chooseFilesToOpen(const QString&, const QString&, const QString&, FilesChosen,
                           OpenChooser*) override {}
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

/// While one exists, what showInformation() and showWarning() tell is modeless: for steps that read
/// files without which the work goes on, and whose readers are used where somebody waits for them
/// too. Critical messages, after which the program may end, stay as they are.
class ModelessMessages {
public:
    ModelessMessages();
    ~ModelessMessages();
    ModelessMessages(const ModelessMessages&) = delete;
    ModelessMessages& operator=(const ModelessMessages&) = delete;
};

[[nodiscard]] bool askQuestion(const QString& text, const QString& title = programTitle);
/// The same where Yes may lose something: Return means No.
[[nodiscard]] bool askBeforeLoss(const QString& text);
void announce(const QString& title, const QString& text, const QString& button);

/// Ask for a value and block: nothing when the operator cancels or no value is within the bounds.
/// `start` is clamped to the bounds; NaN becomes the minimum.
[[nodiscard]] std::optional<int> askForInteger(const InputTexts& texts, int start,
                                               const IntegerBounds& bounds);
[[nodiscard]] std::optional<double> askForNumber(const InputTexts& texts, double start,
                                                 const NumberBounds& bounds);
[[nodiscard]] std::optional<QString> askForText(const InputTexts& texts, const QString& start);

/// Full path of an existing file, or an empty string when the operator cancels. In all file
/// choosers `place` is the initial folder, or a path whose file name is suggested, and `filter` is
/// like "Bitmaps (*.bmp)", several joined by ";;". Blocks, as does the next one.
[[nodiscard]] QString waitForFileToOpen(const QString& title, const QString& place,
                                        const QString& filter);
/// Full path of a file to write, with an extension of the filter, or an empty string when the
/// operator cancels or declines to replace an existing file.
[[nodiscard]] QString waitForFileToSave(const QString& title, const QString& place,
                                        const QString& filter);
/// The modeless forms, for whatever can be done during a run: `chosen` is called with the path, or
/// not at all. With a subject, the chooser and its question about an existing file close when the
/// subject is destroyed.
void chooseFileToOpen(const QString& title, const QString& place, const QString& filter,
                      FileChosen chosen, OpenChooser* subject = nullptr);
/// The same for one file or several.
void chooseFilesToOpen(const QString& title, const QString& place, const QString& filter,
                       FilesChosen chosen, OpenChooser* subject = nullptr);
void chooseFileToSave(const QString& title, const QString& place, const QString& filter,
                      FileChosen chosen, OpenChooser* subject = nullptr);
/// Opens a modeless colour chooser at the colour `start`. `chosen` is called when the operator
/// accepts a colour.
void chooseColor(const QString& title, const RgbColor& start, ColorChosen chosen,
                 OpenChooser& subject);
