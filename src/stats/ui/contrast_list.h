// The contrast list: selection, sign and colour of the contrasts.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "stats/contrasts.h"

#include <QHash>
#include <QIcon>
#include <QTreeWidget>

class QMenu;

/// Shows a run's contrasts and changes their selection and colours. It does not own them.
class ContrastList : public QTreeWidget {
    Q_OBJECT

public:
    enum Column { Name = 0, Positive = 1, Negative = 2, Color = 3 };

    explicit ContrastList(QWidget* parent);

    /// Fills the list; nullptr clears it. The contrasts must outlive the list or the next call.
    void setContrasts(ContrastDefinitions* contrasts);
    /// Shows selection and colours anew, after others have changed them.
    void showRows();
    /// Enables the entries of the menu, which otherwise say in their tool tips why they are off.
    void setStatisticCanChange(bool can);

Q_SIGNALS:
    /// Selection or colours have changed.
    void contrastsEdited();
    /// The menu is about to open: setStatisticCanChange() is called now.
    void statisticMenuOpening();
    /// An entry of the menu was chosen. `contrast` is the one that the menu was opened on, or -1.
    void statisticChosen(ShownStatistic statistic, int contrast);
    void oneSidedTestingChosen(bool on);

public Q_SLOTS:
    void slotClickedContrastList(QTreeWidgetItem* item, int column);
    /// A double click on a name shows this contrast alone.
    void slotDoubleClickedContrastList(QTreeWidgetItem* item, int column);
    /// Switches all contrasts off.
    void slotDeleteAllContrasts();

protected:
    /// +, - and C act like clicks in the columns of the current contrast.
    void keyPressEvent(QKeyEvent* event) override;
    /// Opens the menu of the statistics, also by the Menu key.
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void makeMenu();
    void addStatistic(const QString& text, const char* name, ShownStatistic statistic);
    void refreshMenu();
    void toggle(int index, ContrastState bit);
    void editColor(int index);
    void showRow(int index);

    ContrastDefinitions* contrasts_ = nullptr;
    OpenChooser colorChooser_; ///< of one of the contrasts
    // Not made anew for each run, as Qt keeps what it has drawn of an icon.
    const QIcon off_;
    const QIcon on_;
    QHash<QRgb, QIcon> colors_;
    QMenu* menu_; ///< modeless, so that a run continues
    QAction* oneSided_ = nullptr;
    int menuContrast_ = -1; ///< that the menu was opened on
    bool statisticCanChange_ = false;
};
