// The contrast list: selection, sign and colour of the contrasts.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "stats/contrasts.h"

#include <QHash>
#include <QIcon>
#include <QTreeWidget>

/// Shows a run's contrasts and changes their selection and colours. It does not own them.
class ContrastList : public QTreeWidget {
    Q_OBJECT

public:
    enum Column { Name = 0, Positive = 1, Negative = 2, Color = 3 };

    explicit ContrastList(QWidget* parent);

    /// Fills the list; nullptr clears it. The contrasts must outlive the list or the next call.
    void setContrasts(ContrastDefinitions* contrasts);

Q_SIGNALS:
    /// Selection or colours have changed.
    void contrastsEdited();

public Q_SLOTS:
    void slotClickedContrastList(QTreeWidgetItem* item, int column);
    /// A double click on a name shows this contrast alone.
    void slotDoubleClickedContrastList(QTreeWidgetItem* item, int column);
    /// Switches all contrasts off.
    void slotDeleteAllContrasts();

protected:
    /// +, - and C act like clicks in the columns of the current contrast.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void toggle(int index, ContrastState bit);
    void editColor(int index);
    void showRow(int index);
    void showRows();

    ContrastDefinitions* contrasts_ = nullptr;
    OpenChooser colorChooser_; ///< of one of the contrasts
    // Not made anew for each run, as Qt keeps what it has drawn of an icon.
    const QIcon off_;
    const QIcon on_;
    QHash<QRgb, QIcon> colors_;
};
