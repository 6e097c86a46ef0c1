// The list of contrasts, or of the maps of a plug-in: selection, sign and colour.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "stats/ui/map_rows.h"

#include <QHash>
#include <QIcon>
#include <QTreeWidget>

class QMenu;

/// Shows the rows of a source and passes on what the operator does with them.
class ContrastList : public QTreeWidget {
    Q_OBJECT

public:
    enum Column { Name = 0, Positive = 1, Negative = 2, Color = 3 };

    explicit ContrastList(QWidget* parent);

    /// Fills the list; nullptr clears it. The source is not owned and must outlive the next call.
    void setRows(MapRows* rows);
    /// Shows the rows anew, after others have changed them.
    void showRows();
    /// Enables the entries of the menu, which otherwise say in their tool tips why they are off.
    void setStatisticCanChange(bool can);

Q_SIGNALS:
    /// The menu is about to open: setStatisticCanChange() is called now.
    void statisticMenuOpening();
    /// An entry of the menu was chosen. `contrast` is the one that the menu was opened on, or -1.
    void statisticChosen(ShownStatistic statistic, int contrast);
    void oneSidedTestingChosen(bool on);

public Q_SLOTS:
    void slotClickedContrastList(QTreeWidgetItem* item, int column);
    /// A double click on a name shows this contrast or map alone.
    void slotDoubleClickedContrastList(QTreeWidgetItem* item, int column);
    /// Switches all contrasts off.
    void slotDeleteAllContrasts();

protected:
    /// +, - and C act like clicks in the columns of the current row.
    void keyPressEvent(QKeyEvent* event) override;
    /// Opens the menu of the statistics, also by the Menu key, where the rows have one.
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void makeMenu();
    void addStatistic(const QString& text, const char* name, ShownStatistic statistic);
    void refreshMenu();
    /// The index of one of the rows; -1 for other items.
    [[nodiscard]] int indexOfRow(QTreeWidgetItem* item) const;
    void editColor(int index);
    void makeItems(size_t nrOfRows);
    void showRow(size_t index);

    MapRows* rows_ = nullptr;
    std::vector<MapRow> shown_; ///< what the items show
    int nrOfUnlisted_ = 0;      ///< of which the last item tells
    OpenChooser colorChooser_;  ///< of one of the rows
    // Not made anew for each run, as Qt keeps what it has drawn of an icon.
    const QIcon off_;
    const QIcon on_;
    QHash<QRgb, QIcon> colors_;
    QMenu* menu_; ///< modeless, so that a run continues
    QAction* oneSided_ = nullptr;
    int menuContrast_ = -1; ///< that the menu was opened on
    bool statisticCanChange_ = false;
};
