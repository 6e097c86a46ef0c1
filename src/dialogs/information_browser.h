// The window that shows HTML pages which the program has written.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class InformationBrowserDlg;
}

/// A modeless window that shows one page at a time. Links are not followed.
class InformationBrowserDlg : public QDialog {
    Q_OBJECT

public:
    explicit InformationBrowserDlg(QWidget* parent);
    ~InformationBrowserDlg() override;

    /// Shows the file as it is now; the title of the page is that of the window.
    void showPage(const QString& path);

private:
    const std::unique_ptr<Ui::InformationBrowserDlg> ui_;
};

/// Shows the page in the information browser of the window, which is opened or raised. `place` as
/// for showBeside().
void showInInformationBrowser(const QString& path, QWidget& window, int place = 0);
