// What holds for the controls of every dialog.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QDialog>
#include <QLineEdit>
#include <QStackedWidget>
#include <QTabBar>
#include <gtest/gtest.h>

/// On a page that is not at the front.
inline bool isOnHiddenPage(const QWidget* widget) {
    for (; widget && !widget->isWindow(); widget = widget->parentWidget())
        if (const auto* pages = qobject_cast<const QStackedWidget*>(widget->parentWidget());
            pages && pages->currentWidget() != widget)
            return true;
    return false;
}

/// Each control that takes the keyboard explains itself, no two share a key unless they are on
/// different pages, and the dialog fits the smallest screen, which has 768 lines.
inline void expectExplained(const QDialog& dialog) {
    EXPECT_TRUE(dialog.sizeHint().width() <= 1000 && dialog.sizeHint().height() <= 700);
    QStringList keys;
    for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
        const QString name = widget->objectName();
        // The list of a combo box is a window of its own.
        const bool ours =
            !name.startsWith("qt_") && widget->window() == &dialog &&
            !qobject_cast<const QTabBar*>(widget->parentWidget()) &&
            (qobject_cast<const QLineEdit*>(widget) || widget->focusPolicy() & Qt::TabFocus);
        EXPECT_TRUE(!ours || !widget->toolTip().isEmpty()) << name.toStdString();
        if (widget->window() != &dialog || isOnHiddenPage(widget))
            continue;
        for (const char* property : {"text", "title"}) {
            const QString text = widget->property(property).toString();
            if (const qsizetype mark = text.indexOf('&'); mark >= 0)
                keys << text.mid(mark + 1, 1).toLower();
        }
    }
    EXPECT_EQ(keys.removeDuplicates(), 0) << keys.join(' ').toStdString();
}

/// A window whose dialogs are driven by the object names of their controls. As a base beside that
/// of the session it goes first, and the dialogs with it.
class DrivenWindow {
protected:
    template<typename Widget = QWidget> Widget& find(const char* name) {
        auto* widget = window.findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name;
        return *widget;
    }
    void click(const char* name) {
        auto& button = find<QAbstractButton>(name);
        EXPECT_TRUE(button.isEnabled()) << name;
        button.click();
    }
    QWidget window;
};
