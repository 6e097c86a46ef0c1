// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/panel_controls.h"

#include <QFrame>
#include <QPainter>
#include <QToolButton>

namespace {

/// The icon of a disabled button is as faint as its text would be.
QIcon dimmableIcon(const QString& path) {
    QIcon icon(path);
    const QPixmap bright(path);
    QPixmap faint(bright.size());
    faint.fill(Qt::transparent);
    QPainter painter(&faint);
    painter.setOpacity(0.3);
    painter.drawPixmap(0, 0, bright);
    painter.end();
    icon.addPixmap(faint, QIcon::Disabled);
    return icon;
}

} // namespace

QFrame* newPanel(const char* name, QWidget* parent) {
    auto* frame = new QFrame(parent);
    frame->setObjectName(name);
    return frame;
}

QToolButton* newButton(const char* name, const QString& toolTip, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QToolButton* newIconButton(const char* name, const char* icon, const QString& toolTip,
                           QWidget* parent) {
    QToolButton* button = newButton(name, toolTip, parent);
    button->setIcon(dimmableIcon(QStringLiteral(":/images/%1.png").arg(icon)));
    button->setIconSize({24, 24});
    button->setFixedSize(44, 44);
    return button;
}
