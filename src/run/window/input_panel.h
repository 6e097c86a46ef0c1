// The run button and what stands around it: recordings, reload, pre-load.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_display.h"
#include "run/session/settings_file_watch.h"

#include <QFrame>
#include <QIcon>
#include <array>

class QPushButton;
class QToolButton;
class VeloCortivo;

class InputPanel : public QFrame {
public:
    explicit InputPanel(QWidget* parent);

    /// Connects the buttons to the slots of the window.
    void connectTo(VeloCortivo& window);
    void showRunButton(RunButtonState state);
    void showControls(const InputControls& controls);
    void focusRunButton();
    [[nodiscard]] bool autoAdvanceLit() const;
    [[nodiscard]] bool autoStartLit() const;

private:
    QToolButton* record_;
    QToolButton* toBegin_;
    QToolButton* toEnd_;
    QToolButton* reload_;
    /// Named after what they once switched; a click chooses a file, and they are lit while
    /// auto-advance and auto-start are on.
    QPushButton* preLoadROI_;
    QPushButton* preLoadVOI_;
    /// In the order of RunButtonState. The look at the settings file shows one every second, and of
    /// each new icon Qt keeps what it has drawn.
    const std::array<QIcon, 4> runButtonIcons_;
};
