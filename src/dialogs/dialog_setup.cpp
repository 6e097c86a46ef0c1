// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/dialog_setup.h"

#include "base/messages.h"
#include "base/plain_file.h"
#include "dialogs/appearance.h"
#include "ui_text_dialog.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDialog>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QUrl>
#include <algorithm>
#include <set>

namespace {

constexpr int titleBarHeight = 40; // pixels that are kept free for the window's own frame

/// Pages ask for the sizes of their parts before these have their style, and what scrolls doesn't
/// tell of a change.
void renewSizeHints(const QWidget& dialog) {
    QWidgetList parts = dialog.findChildren<QWidget*>();
    parts.removeIf([&dialog](const QWidget* part) { return part->window() != &dialog; });
    for (QWidget* part : parts)
        part->ensurePolished();
    std::ranges::reverse(parts); // what is inside first
    for (QWidget* part : parts) {
        if (QLayout* layout = part->layout()) {
            layout->invalidate();
            layout->activate();
        }
        part->updateGeometry();
    }
}

/// Sets the size of a dialog when it is shown for the first time; a top-level window would
/// otherwise be limited to two thirds of the screen.
class FirstSize : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* dialog = static_cast<QWidget*>(watched);
        if (event->type() != QEvent::Show || dialog->testAttribute(Qt::WA_Resized))
            return false;
        renewSizeHints(*dialog);
        dialog->resize(
            dialog->sizeHint().boundedTo(screenArea(dialog).size() - QSize(0, titleBarHeight)));
        return false;
    }
};

/// For the others a screen reader uses the text of the button or of a label.
bool needsName(const QWidget* widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    return button ? button->text().isEmpty()
                  : qobject_cast<const QLineEdit*>(widget) ||
                        qobject_cast<const QAbstractSpinBox*>(widget) ||
                        qobject_cast<const QComboBox*>(widget) ||
                        qobject_cast<const QAbstractItemView*>(widget);
}

/// The size hint of a group leaves out the check mark before its title.
void makeRoomForTitles(QDialog& dialog) {
    for (QGroupBox* group : dialog.findChildren<QGroupBox*>()) {
        if (!group->isCheckable())
            continue;
        const QFontMetrics metrics(group->font());
        const int title = metrics.size(Qt::TextShowMnemonic, group->title()).width();
        group->setMinimumWidth(std::max(group->minimumWidth(), title + 7 * metrics.height() / 2));
    }
}

} // namespace

void prepareDialog(QDialog& dialog) {
    makeRoomForTitles(dialog);
    std::set<const QWidget*> labelled;
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        labelled.insert(label->buddy());
    for (QWidget* widget : dialog.findChildren<QWidget*>())
        if (needsName(widget) && !labelled.contains(widget) && widget->accessibleName().isEmpty())
            widget->setAccessibleName(widget->toolTip());
    wrapToolTips(dialog);
    dialog.installEventFilter(new FirstSize(&dialog));
}

void showInFront(QDialog& dialog) {
    dialog.show();
    dialog.raise();
    dialog.activateWindow();
}

void returnToControl(QWidget& control) {
    // The message belonged to another window, which may have the focus now.
    control.activateWindow();
    control.setFocus();
    if (auto* field = qobject_cast<QLineEdit*>(&control))
        field->selectAll();
}

QRect placedWithin(const QRect& area, const QRect& frame) {
    QRect placed(frame.topLeft(), frame.size().boundedTo(area.size()));
    placed.moveRight(std::min(placed.right(), area.right()));
    placed.moveBottom(std::min(placed.bottom(), area.bottom()));
    placed.moveLeft(std::max(placed.left(), area.left()));
    placed.moveTop(std::max(placed.top(), area.top()));
    return placed;
}

QPoint placeBeside(const QRect& area, const QRect& main, QSize frame, int n) {
    constexpr QPoint offset(20, 20);
    const int freeRight = area.right() - main.right();
    const int freeLeft = main.left() - area.left();
    if (std::max(freeLeft, freeRight) >= frame.width()) {
        const int left = freeRight >= frame.width() ? main.right() + 1 : area.left();
        return QPoint(left, main.top()) + offset * n;
    }
    // A tall one would cover the run button.
    if (frame.height() > main.height() * 3 / 5)
        return QPoint(main.left(), main.top() + main.height() * 2 / 5) + offset * n;
    // To the left and up: the fields of the thresholds, at the bottom, are not covered.
    return QPoint(main.right() + 1 - frame.width(), main.top() + main.height() * 2 / 5) -
           offset * n;
}

void showBeside(QDialog& dialog, int n) {
    if (!dialog.testAttribute(Qt::WA_Moved)) {
        const QWidget* main = dialog.parentWidget()->window();
        const bool sized = dialog.testAttribute(Qt::WA_Resized);
        const QSize frame = (sized ? dialog.size() : dialog.sizeHint()) + windowFrame;
        const QRect area = screenArea(main);
        dialog.move(
            placedWithin(area, {placeBeside(area, main->geometry(), frame, n), frame}).topLeft());
    }
    showInFront(dialog);
}

void keepOnScreen(QWidget& window) {
    const QRect frame = window.frameGeometry();
    const QRect placed = placedWithin(screenArea(&window), frame);
    if (placed == frame)
        return;
    window.resize(window.size() - (frame.size() - placed.size()));
    window.move(placed.topLeft());
}

void openTextDialog(QWidget& parent, const char* name, const QString& title, const QString& text) {
    if (auto* open = parent.findChild<QDialog*>(name))
        return showInFront(*open);
    auto* dialog = new QDialog(&parent);
    Ui::TextDlg form;
    form.setupUi(dialog);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectName(name);
    dialog->setWindowTitle(title);
    form.TextLbl->setText(text);
    prepareDialog(*dialog);
    form.Buttons->setFocus();
    dialog->show();
}

void openHelpFile(const QString& path) {
    if (path.isEmpty())
        return;
    if (!fileExists(path) || !QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        showModelessWarning(QString("WARNING: Unable to open help file \"%1\"!").arg(path));
}
