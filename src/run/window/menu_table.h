// The menus of the main window, as a table.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

class QAction;
class QActionGroup;
class QMenu;
class QMenuBar;
class VeloCortivo;

/// When an entry can be chosen: at any time, or while the session is idle.
enum class MenuPhase { Always, Idle };

/// One entry, in order of creation.
struct MenuEntry {
    const char* menu; ///< title of the menu that holds it
    const char* text;
    void (VeloCortivo::*slot)();
    MenuPhase phase = MenuPhase::Always;
    /// What it needs beside the phase; null for nothing.
    bool (*possible)(VeloCortivo& window) = nullptr;
    /// For an entry with a mark: whether it is set. Of those with a mark in one menu one holds.
    bool (*checked)(VeloCortivo& window) = nullptr;
    bool endsGroup = false; ///< a separator follows
};

[[nodiscard]] std::span<const MenuEntry> menuEntries();

/// The menus made from the table.
class MenuTable {
public:
    MenuTable(QMenuBar& bar, VeloCortivo& window);
    /// Enables and marks the entries of the menu with this title, as the session stands now.
    void refresh(const char* title);

private:
    [[nodiscard]] QAction* addEntry(QMenu& menu, QActionGroup& marks, const MenuEntry& entry);

    VeloCortivo& window_;
    std::vector<QAction*> actions_; ///< one for each entry of the table
};
