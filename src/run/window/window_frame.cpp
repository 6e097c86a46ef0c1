// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/window_frame.h"

#include "dialogs/appearance.h"
#include "run/session/settings_file_watch.h"
#include "run/window/window_layout.h"

#include <QBitmap>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

void WindowFrame::applySize() {
    const auto size = WindowSize(watch_.master().windowSize);
    skin_.load(size == WindowSize::Small ? ":/images/VCO_Skin_1024x768.png"
                                         : ":/images/VCO_Skin_1280x1024.png");
    window_.setFixedSize(windowPixels(size));
    window_.setMask(skin_.mask());
    for (const PanelPlace& place : panelPlaces())
        if (auto* panel = window_.findChild<QWidget*>(place.name, Qt::FindDirectChildrenOnly))
            panel->setGeometry(place.at(size));
    window_.update();
}

void WindowFrame::placeOnScreen() {
    const MasterFile& master = watch_.master();
    const QRect area = screenArea(&window_);
    const QPoint wanted =
        windowPosition(area, windowPixels(WindowSize(master.windowSize)), master.windowCentredX,
                       master.windowCentredY, {master.windowX, master.windowY});
    window_.move(reachablePosition(area, window_.size(), wanted));
}

void WindowFrame::switchSize() {
    watch_.setWindowSize(watch_.master().windowSize == 1 ? 2 : 1);
}

void WindowFrame::keepReachable() {
    window_.move(reachablePosition(screenArea(&window_), window_.size(), window_.pos()));
}

void WindowFrame::paint() {
    QPainter(&window_).drawPixmap(window_.rect(), skin_);
}

void WindowFrame::press(const QMouseEvent& event) {
    if (event.button() == Qt::LeftButton)
        dragOffset_ = event.globalPosition().toPoint() - window_.frameGeometry().topLeft();
}

void WindowFrame::drag(const QMouseEvent& event) {
    if (!dragOffset_ || !(event.buttons() & Qt::LeftButton))
        return;
    const QPoint wanted = event.globalPosition().toPoint() - *dragOffset_;
    window_.move(reachablePosition(screenArea(&window_), window_.size(), wanted));
    watch_.setWindowPosition(window_.pos());
}
