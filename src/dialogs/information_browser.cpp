// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/information_browser.h"

#include "dialogs/dialog_setup.h"
#include "ui_information_browser.h"

#include <QUrl>

InformationBrowserDlg::InformationBrowserDlg(QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::InformationBrowserDlg>()) {
    ui_->setupUi(this);
    prepareDialog(*this);
    resize(620, 620); // beside it the slices stay visible
    ui_->InformationBrowser->setFocus();
}

InformationBrowserDlg::~InformationBrowserDlg() = default;

void InformationBrowserDlg::showPage(const QString& path) {
    ui_->InformationBrowser->setSource(QUrl::fromLocalFile(path));
    ui_->InformationBrowser->reload(); // the same page may have been written anew
    setWindowTitle(ui_->InformationBrowser->documentTitle());
}

void showInInformationBrowser(const QString& path, QWidget& window, int place) {
    auto* browser = window.findChild<InformationBrowserDlg*>();
    if (!browser)
        browser = new InformationBrowserDlg(&window);
    browser->showPage(path);
    showBeside(*browser, place);
}
