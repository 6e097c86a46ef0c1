// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_dialog.h"

#include "ui_plugin_dialog.h"

PluginDlg::PluginDlg(const QString& pluginName, QWidget& window)
    : QDialog(&window), form_(std::make_unique<Ui::PluginDlg>()) {
    form_->setupUi(this);
    setWindowTitle(pluginName);
}

PluginDlg::~PluginDlg() = default;

void PluginDlg::log(const QString& text) {
    form_->LogTxt->append(text);
}
