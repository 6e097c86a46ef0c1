// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/title_row.h"

#include "dialogs/panel_controls.h"
#include "run/window/velo_cortivo.h"

#include <QBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QToolButton>

namespace {

void createLogo(VeloCortivo& window) {
    QFrame* frame = newPanel("TitleFrm", &window);
    frame->setToolTip("Drag to move the window");
    auto* row = new QHBoxLayout(frame);
    row->setContentsMargins(4, 0, 0, 0);
    auto* logo = new QLabel(frame);
    logo->setObjectName("LogoLbl");
    const QPixmap picture(":/images/VCOLogo4.png");
    logo->setPixmap(picture.scaledToHeight(26, Qt::SmoothTransformation));
    row->addWidget(logo);
    row->addStretch();
}

QMenuBar* createMenuBar(VeloCortivo& window) {
    QFrame* frame = newPanel("MenuBarFrm", &window);
    auto* row = new QHBoxLayout(frame);
    row->setContentsMargins(0, 5, 0, 0);
    auto* bar = new QMenuBar(frame);
    bar->setNativeMenuBar(false);
    bar->setObjectName("MenuBar");
    // No wider than its menus: the rest of the row is where the window is dragged.
    bar->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Minimum);
    row->addWidget(bar);
    row->addStretch();
    return bar;
}

void createWindowButtons(VeloCortivo& window) {
    QFrame* frame = newPanel("WindowButtonsFrm", &window);
    auto* row = new QHBoxLayout(frame);
    row->setContentsMargins(0, 2, 0, 2);
    row->setSpacing(4);
    row->addStretch();
    const auto addButton = [&](const char* name, const char* icon, const char* toolTip) {
        QToolButton* button = newButton(name, toolTip, frame);
        button->setIcon(QIcon(QStringLiteral(":/images/%1.png").arg(icon)));
        button->setIconSize({16, 16});
        button->setFixedSize(34, 28);
        row->addWidget(button);
        return button;
    };
    QObject::connect(addButton("WindowSizeBtn", "window_size",
                               "Switch the window between 1024 x 768 and 1280 x 1024 pixels"),
                     &QToolButton::clicked, &window, &VeloCortivo::slotSwitchWindowSize);
    QObject::connect(addButton("MinimizeBtn", "window_minimize", "Minimize the window"),
                     &QToolButton::clicked, &window, &QWidget::showMinimized);
    QObject::connect(addButton("CloseBtn", "window_close",
                               "End the program; a running measurement is saved first"),
                     &QToolButton::clicked, &window, &VeloCortivo::slotClose);
}

} // namespace

QMenuBar* createTitleRow(VeloCortivo& window) {
    createLogo(window);
    QMenuBar* bar = createMenuBar(window);
    createWindowButtons(window);
    return bar;
}
