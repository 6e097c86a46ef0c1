// The menus of the main window, as a table.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <map>
#include <span>
#include <string_view>
#include <vector>

class QAction;
class QActionGroup;
class QMenu;
class QMenuBar;
class VeloCortivo;

/// When an entry can be chosen: at any time, while the session is idle, or not in this version.
enum class MenuPhase { Always, Idle, Later };

/// Entries with a mark: at most one of a group is marked; those of Toggle are independent.
enum class MenuGroup { None, Toggle, Colors, Overlay, RegionStyle };

/// One entry, in order of creation.
struct MenuEntry {
    const char* menu; ///< title of the menu that holds it
    const char* text;
    void (VeloCortivo::*slot)();
    MenuPhase phase = MenuPhase::Always;
    /// What it needs beside the phase; null for nothing.
    bool (*possible)(VeloCortivo& window) = nullptr;
    MenuGroup group = MenuGroup::None;
    bool (*checked)(VeloCortivo& window) = nullptr; ///< whether its mark is set
    bool endsSection = false;                       ///< a separator follows
    /// What it is for, where the text alone doesn't say it, or why it can't be chosen yet.
    const char* toolTip = nullptr;
    /// Why it can't be chosen now, which its tool tip says then; empty when it can. Null for
    /// entries whose tool tip is always the same.
    QString (*hindrance)(VeloCortivo& window) = nullptr;
};

[[nodiscard]] std::span<const MenuEntry> menuEntries();

/// One entry of a menu whose entries are made anew each time it opens.
struct MenuRow {
    QString text;
    void (VeloCortivo::*slot)() = nullptr; ///< finds `data` in its sender; none for a separator
    int data = 0;
    bool enabled = true;
    bool checked = false; ///< has a mark, which is set
    QString toolTip = {};
};

/// The menus made from the table.
class MenuTable {
public:
    MenuTable(QMenuBar& bar, VeloCortivo& window);
    /// Enables and marks the entries of the menu with this title, as the session stands now.
    void refresh(const char* title);
    /// Replaces all entries of the menu with this title, which has none in the table.
    void rebuild(const char* title, const std::vector<MenuRow>& rows);

private:
    [[nodiscard]] QAction* addEntry(QMenu& menu, const MenuEntry& entry);
    [[nodiscard]] bool inPhase(MenuPhase phase) const;

    VeloCortivo& window_;
    std::map<std::string_view, QMenu*> menus_; ///< by title
    std::vector<QAction*> actions_;            ///< one for each entry of the table
    std::map<MenuGroup, QActionGroup*> groups_;
};
