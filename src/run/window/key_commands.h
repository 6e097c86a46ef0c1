// Keys and mouse presses as the whole program sees them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Qt>

class QEvent;
class QObject;
class VeloCortivo;

/// The filter of all events of all windows: key commands, the modifiers of the latest press, and
/// who has the keyboard.
class KeyCommands {
public:
    explicit KeyCommands(VeloCortivo& window) : window_(window) {}

    /// True when the event goes no further.
    [[nodiscard]] bool filter(QObject* watched, QEvent* event);
    /// The next volume does not give the keyboard to the slices: the operator went to a control
    /// with the Tab key, or clicked in a number to change it.
    [[nodiscard]] bool controlKeepsFocus() const { return controlKeepsFocus_; }
    void releaseFocus() { controlKeepsFocus_ = false; }

private:
    /// Modifiers of the latest key or mouse press, until the next release.
    struct InputFlags {
        bool control = false;
        bool shift = false;
        bool alt = false;
        Qt::MouseButtons mouseButtons = Qt::NoButton;
    };
    [[nodiscard]] static InputFlags flagsOf(Qt::KeyboardModifiers modifiers,
                                            Qt::MouseButtons buttons);
    [[nodiscard]] bool handleKey(int key);

    VeloCortivo& window_;
    InputFlags inputFlags_;
    bool controlKeepsFocus_ = false;
};
