// The tree of contrasts: which are shown, with which sign, in which colour.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "stats/contrasts.h"

#include <QTreeWidget>

/// Shows a run's contrasts and changes their selection and colours. It does not own them.
class ContrastList : public QTreeWidget {
    Q_OBJECT

public:
    enum Column { Name = 0, Positive = 1, Negative = 2, Color = 3 };

    explicit ContrastList(QWidget* parent);

    /// Fills the tree; nullptr empties it. The contrasts must outlive the list or the next call.
    void setContrasts(ContrastDefinitions* contrasts);

Q_SIGNALS:
    /// Selection or colours have changed.
    void contrastsEdited();

public Q_SLOTS:
    void slotClickedContrastList(QTreeWidgetItem* item, int column);

protected:
    /// +, - and C do for the current contrast what a click in its columns does.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void toggle(int index, ContrastState bit);
    void editColor(int index);
    void showRow(int index);

    ContrastDefinitions* contrasts_ = nullptr;
    OpenChooser colorChooser_; ///< of one of the contrasts
};
