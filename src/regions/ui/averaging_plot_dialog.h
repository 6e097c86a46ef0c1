// The window of the event-related average.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class Plot2DDlg : public QDialog {
    Q_OBJECT
};
