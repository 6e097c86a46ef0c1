// The window of the plug-in that runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QString>
#include <memory>

namespace Ui {
class PluginDlg;
}

/// Shows the plug-in's lines, below them its times. Deleted when it is closed.
class PluginDlg : public QDialog {
    Q_OBJECT

public:
    PluginDlg(const QString& pluginName, QWidget& window);
    ~PluginDlg() override;

    void log(const QString& text);
    /// The line with times below the text; `warning` is coloured.
    void showTimes(const QString& text, bool warning);
    /// The file that "Help" opens; without one there is no such button.
    void setHelpFile(const QString& path);

private:
    const std::unique_ptr<Ui::PluginDlg> form_;
};
