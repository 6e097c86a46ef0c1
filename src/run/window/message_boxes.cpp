// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/message_boxes.h"

#include "dialogs/appearance.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QColorDialog>
#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <utility>

namespace {

/// A box under a busy cursor would look as if it could not be answered.
std::vector<QCursor> takeCursorsOff() {
    std::vector<QCursor> cursors;
    while (const QCursor* cursor = QApplication::overrideCursor()) {
        cursors.push_back(*cursor);
        QApplication::restoreOverrideCursor();
    }
    return cursors;
}

/// The window at the bottom of those that lie over each other: a dialog may close and be deleted
/// below a box. While another program is in front, the main window: a box must not turn up on some
/// other screen.
QWidget* boxParent() {
    QWidget* window = QApplication::activeWindow();
    for (QWidget* candidate : QApplication::topLevelWidgets())
        if (!window && candidate->isVisible() && candidate->objectName() == "VeloCortivo")
            window = candidate;
    while (window && window->parentWidget())
        window = window->parentWidget()->window();
    return window;
}

/// A dialog that is waited for. Its parent may take it along meanwhile.
template<typename Dialog> class ModalDialog {
public:
    ModalDialog() : dialog_(new Dialog(boxParent())) {}
    ~ModalDialog() { delete dialog_; }
    ModalDialog(const ModalDialog&) = delete;
    ModalDialog& operator=(const ModalDialog&) = delete;

    Dialog* operator->() { return dialog_; }
    Dialog& operator*() { return *dialog_; }
    /// What the dialog returns; 0, which is no button and no acceptance, when it has gone.
    [[nodiscard]] int wait() {
        const std::vector<QCursor> cursors = takeCursorsOff();
        const int result = dialog_->exec();
        for (auto cursor = cursors.rbegin(); cursor != cursors.rend(); ++cursor)
            QApplication::setOverrideCursor(*cursor);
        return dialog_ ? result : 0;
    }

private:
    QPointer<Dialog> dialog_;
};

QMessageBox::Icon iconOf(MessageLevel level) {
    switch (level) {
    case MessageLevel::Information:
        return QMessageBox::Information;
    case MessageLevel::Warning:
        return QMessageBox::Warning;
    case MessageLevel::Critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

void setUp(QMessageBox& box, QMessageBox::Icon icon, const QString& text, const QString& title) {
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(title);
    box.setText(text);
    box.setIcon(icon);
}

int waitForBox(QMessageBox::Icon icon, const QString& text, const QString& title,
               QMessageBox::StandardButtons buttons,
               QMessageBox::StandardButton defaultButton = QMessageBox::NoButton) {
    ModalDialog<QMessageBox> box;
    setUp(*box, icon, text, title);
    box->setStandardButtons(buttons);
    box->setDefaultButton(defaultButton);
    return box.wait();
}

/// Shows a dialog that is not waited for.
void showBeside(QDialog* dialog) {
    static_cast<void>(takeCursorsOff());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setModal(false);
    dialog->show();
}

// A warning that comes at every volume would cover the screen with boxes.
void showBoxBeside(QMessageBox::Icon icon, const QString& text, const QString& title) {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* open = qobject_cast<QMessageBox*>(widget);
            open && open->isVisible() && !open->isModal() && open->icon() == icon &&
            open->text() == text && open->windowTitle() == title)
            return open->raise();
    auto* box = new QMessageBox(boxParent());
    setUp(*box, icon, text, title);
    box->setStandardButtons(QMessageBox::Ok);
    showBeside(box);
}

/// What is open of a request that is not waited for.
struct OpenRequest {
    QPointer<QDialog> dialog;
    bool dropped = false; ///< nobody is called any more

    void drop() {
        dropped = true;
        if (!dialog)
            return;
        // Not deleted at once: its own signal may have led here.
        dialog->hide();
        dialog->deleteLater();
    }
};

QString replaceQuestion(const QString& path) {
    return QStringLiteral("The file \"%1\" exists already.\n\nDo you want to replace it?")
        .arg(path);
}

void askBeforeReplacing(const QString& path, const std::shared_ptr<OpenRequest>& request,
                        const FileChosen& replace) {
    auto* box = new QMessageBox(boxParent());
    setUp(*box, QMessageBox::Question, replaceQuestion(path), programTitle);
    box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box->setDefaultButton(QMessageBox::No);
    QObject::connect(box, &QMessageBox::finished, box, [path, request, replace](int answer) {
        if (answer == QMessageBox::Yes && !request->dropped)
            replace(path);
    });
    request->dialog = box;
    showBeside(box);
}

void setUp(QFileDialog& dialog, const QString& title, const QString& place, const QString& filter) {
    dialog.setWindowTitle(title);
    dialog.setNameFilter(filter);
    // Its own questions and drags would hold up a run.
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                      QFileDialog::ReadOnly);
    for (QAbstractItemView* view : dialog.findChildren<QAbstractItemView*>())
        view->setDragEnabled(false);
    dialog.setStyleSheet("QToolButton { padding: 1px; }"); // they are small, their icons larger
    const QFileInfo info(place);
    if (place.isEmpty() || info.isDir())
        return dialog.setDirectory(place);
    dialog.setDirectory(info.path());
    dialog.selectFile(info.fileName());
}

/// The chosen path, which gets the first extension of the chosen filter unless it has one of them.
QString pathToSave(const QFileDialog& dialog) {
    const QString path = dialog.selectedFiles().value(0);
    const QString patterns =
        dialog.selectedNameFilter().section('(', -1).section(')', 0, 0).simplified();
    QString first;
    for (const QString& pattern : patterns.split(' ')) {
        const QString extension = pattern.startsWith("*.") ? pattern.mid(1) : QString();
        if (path.endsWith(extension, Qt::CaseInsensitive))
            return path; // also with "*", which takes every name
        if (first.isEmpty())
            first = extension;
    }
    return path + first;
}

struct ChooserTexts {
    QString title;
    QString place;
    QString filter;
};

/// A chooser of files that exist, which is not waited for. Of one that doesn't exist the toolkit
/// would tell in a box that holds up a run.
class FileOpener : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

    void accept() override {
        const QStringList paths = selectedFiles();
        const auto missing = std::ranges::find_if_not(
            paths, [](const QString& path) { return QFile::exists(path); });
        if (missing == paths.end())
            return QFileDialog::accept();
        reject();
        showModelessWarning(QStringLiteral("WARNING: There is no file \"%1\".").arg(*missing));
    }
};

void openFileOpener(const ChooserTexts& texts, QFileDialog::FileMode mode, FilesChosen chosen,
                    OpenChooser* subject) {
    auto* dialog = new FileOpener(boxParent());
    setUp(*dialog, texts.title, texts.place, texts.filter);
    dialog->setFileMode(mode);
    const auto request = std::make_shared<OpenRequest>(OpenRequest{dialog});
    QObject::connect(dialog, &QFileDialog::filesSelected, dialog,
                     [request, chosen = std::move(chosen)](const QStringList& paths) {
                         if (!request->dropped)
                             chosen(paths);
                     });
    if (subject)
        subject->hold([request] { request->drop(); });
    showBeside(dialog);
}

void setUp(QInputDialog& dialog, const InputTexts& texts) {
    constexpr int lineLength = 50; // characters
    dialog.setWindowTitle(texts.title);
    dialog.setLabelText(texts.text);
    for (auto* label : dialog.findChildren<QLabel*>()) {
        label->setTextFormat(Qt::PlainText);
        // Of the field's label an ampersand would mark a key.
        label->setText(QString(texts.text).replace('&', "&&"));
        label->setWordWrap(true);
        label->setMinimumWidth(lineLength * label->fontMetrics().averageCharWidth());
    }
}

} // namespace

void cancelDialogsForGood() {
    installMessageHandler(nullptr); // first: to be cancelled may lead to a question
    std::vector<QPointer<QDialog>> dialogs;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* dialog = qobject_cast<QDialog*>(widget); dialog && dialog->isVisible())
            dialogs.emplace_back(dialog);
    for (const QPointer<QDialog>& dialog : dialogs)
        if (dialog)
            dialog->reject();
}

void MessageBoxes::show(MessageLevel level, const QString& text, const QString& title) {
    if (isModeless(level))
        showBoxBeside(iconOf(level), text, title);
    else
        waitForBox(iconOf(level), text, title, QMessageBox::Ok);
}

void MessageBoxes::showModeless(MessageLevel level, const QString& text) {
    showBoxBeside(iconOf(level), text, programTitle);
}

bool MessageBoxes::ask(const QString& text, const QString& title, DefaultAnswer defaultAnswer) {
    return waitForBox(QMessageBox::Question, text, title, QMessageBox::Yes | QMessageBox::No,
                      defaultAnswer == DefaultAnswer::Yes ? QMessageBox::Yes : QMessageBox::No) ==
           QMessageBox::Yes;
}

void MessageBoxes::announce(const QString& title, const QString& text, const QString& button) {
    ModalDialog<QMessageBox> box;
    setUp(*box, QMessageBox::NoIcon, text, title);
    box->setDefaultButton(box->addButton(button, QMessageBox::AcceptRole));
    static_cast<void>(box.wait());
}

std::optional<int> MessageBoxes::inputInteger(const InputTexts& texts, int start,
                                              const IntegerBounds& bounds) {
    ModalDialog<QInputDialog> dialog;
    dialog->setInputMode(QInputDialog::IntInput);
    dialog->setIntRange(bounds.minimum, bounds.maximum);
    dialog->setIntValue(start);
    setUp(*dialog, texts);
    return dialog.wait() ? std::optional(dialog->intValue()) : std::nullopt;
}

std::optional<double> MessageBoxes::inputNumber(const InputTexts& texts, double start,
                                                const NumberBounds& bounds) {
    ModalDialog<QInputDialog> dialog;
    dialog->setInputMode(QInputDialog::DoubleInput);
    dialog->setDoubleDecimals(bounds.decimals); // first: the others are rounded to them
    dialog->setDoubleRange(bounds.minimum, bounds.maximum);
    dialog->setDoubleValue(start);
    setUp(*dialog, texts);
    return dialog.wait() ? std::optional(dialog->doubleValue()) : std::nullopt;
}

std::optional<QString> MessageBoxes::inputText(const InputTexts& texts, const QString& start) {
    ModalDialog<QInputDialog> dialog;
    dialog->setTextValue(start);
    setUp(*dialog, texts);
    return dialog.wait() ? std::optional(dialog->textValue()) : std::nullopt;
}

QString MessageBoxes::waitForFileToOpen(const QString& title, const QString& place,
                                        const QString& filter) {
    ModalDialog<QFileDialog> dialog;
    setUp(*dialog, title, place, filter);
    dialog->setFileMode(QFileDialog::ExistingFile);
    return dialog.wait() ? dialog->selectedFiles().value(0) : QString();
}

QString MessageBoxes::waitForFileToSave(const QString& title, const QString& place,
                                        const QString& filter) {
    ModalDialog<QFileDialog> dialog;
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    setUp(*dialog, title, place, filter);
    if (!dialog.wait())
        return {};
    const QString path = pathToSave(*dialog);
    const bool mayWrite =
        !QFile::exists(path) ||
        waitForBox(QMessageBox::Question, replaceQuestion(path), programTitle,
                   QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
    return mayWrite ? path : QString();
}

void MessageBoxes::chooseFileToOpen(const QString& title, const QString& place,
                                    const QString& filter, FileChosen chosen,
                                    OpenChooser* subject) {
    const auto takeFirst = [chosen = std::move(chosen)](const QStringList& paths) {
        chosen(paths.first());
    };
    openFileOpener({title, place, filter}, QFileDialog::ExistingFile, takeFirst, subject);
}

void MessageBoxes::chooseFilesToOpen(const QString& title, const QString& place,
                                     const QString& filter, FilesChosen chosen,
                                     OpenChooser* subject) {
    openFileOpener({title, place, filter}, QFileDialog::ExistingFiles, std::move(chosen), subject);
}

void MessageBoxes::chooseFileToSave(const QString& title, const QString& place,
                                    const QString& filter, FileChosen chosen,
                                    OpenChooser* subject) {
    auto* dialog = new QFileDialog(boxParent());
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    setUp(*dialog, title, place, filter);
    const auto request = std::make_shared<OpenRequest>(OpenRequest{dialog});
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
                     [dialog, request, chosen = std::move(chosen)] {
                         const QString path = pathToSave(*dialog);
                         if (request->dropped)
                             return;
                         if (QFile::exists(path))
                             askBeforeReplacing(path, request, chosen);
                         else
                             chosen(path);
                     });
    if (subject)
        subject->hold([request] { request->drop(); });
    showBeside(dialog);
}

void MessageBoxes::chooseColor(const QString& title, const RgbColor& start, ColorChosen chosen,
                               OpenChooser& subject) {
    auto* dialog = new QColorDialog(toQColor(start), boxParent());
    dialog->setOption(QColorDialog::DontUseNativeDialog);
    dialog->setWindowTitle(title);
    const auto request = std::make_shared<OpenRequest>(OpenRequest{dialog});
    QObject::connect(dialog, &QColorDialog::colorSelected, dialog,
                     [request, chosen = std::move(chosen)](const QColor& color) {
                         if (!request->dropped)
                             chosen({color.red(), color.green(), color.blue()});
                     });
    subject.hold([request] { request->drop(); });
    showBeside(dialog);
}
