// The window of the plug-in that runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QString>
#include <memory>

class SessionPhase;

namespace Ui {
class PluginDlg;
}

/// Shows the plug-in's lines, below them its times. Deleted when it is closed. Escape closes it,
/// but not while a run is prepared or recorded, since it stops that.
class PluginDlg : public QDialog {
    Q_OBJECT

public:
    PluginDlg(const QString& pluginName, const SessionPhase& phase, QWidget& window);
    ~PluginDlg() override;

    /// Adds the text as it is, without HTML. The latest 10,000 lines are kept.
    void log(const QString& text);
    /// The line with times below the text; `warning` is coloured.
    void showTimes(const QString& text, bool warning);
    /// The file that "Help" opens; without one there is no such button.
    void setHelpFile(const QString& path);
    /// Shows it at the right of `window`, with its bottom aligned to the window's, or where there
    /// is no room, as near to that as the screen allows.
    void showBesideWindow();

Q_SIGNALS:
    /// Once, when it is closed, hidden or deleted, whichever comes first.
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void reject() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void leave();

    const SessionPhase& phase_;
    const std::unique_ptr<Ui::PluginDlg> form_;
    QString helpFile_;
    bool left_ = false;
};
