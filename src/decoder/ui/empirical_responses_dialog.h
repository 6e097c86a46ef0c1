// The dialog that makes a subject's own reference responses.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "decoder/empirical_responses.h"
#include "dialogs/edit_dialog.h"

#include <memory>

class QLineEdit;
class SessionDecoder;

namespace Ui {
class CreateEmpiricalResponsesDlg;
}

/// Where the training run comes from: the one in memory, or files of its curves and protocol.
enum class EmpiricalSource { Run, Files };

class CreateEmpiricalResponsesDlg : public EditDialog {
    Q_OBJECT

public:
    CreateEmpiricalResponsesDlg(SessionDecoder& decoder, EmpiricalSource source, QWidget* parent);
    ~CreateEmpiricalResponsesDlg() override;

protected:
    [[nodiscard]] bool apply() override;

private:
    [[nodiscard]] EmpiricalOptions options() const;
    /// The first field that has no file.
    [[nodiscard]] QLineEdit* missingFile() const;
    void browse(QLineEdit& field, const QString& title, const QString& filter);
    void browseResponses();
    /// Files that go with the training data, where none were chosen.
    void proposeFiles();

    SessionDecoder& decoder_;
    const EmpiricalSource source_;
    const std::unique_ptr<Ui::CreateEmpiricalResponsesDlg> ui_;
    OpenChooser chooser_;
};

/// Opens the dialog as a child of `window`; one that is open gives way.
void openEmpiricalResponsesDialog(SessionDecoder& decoder, EmpiricalSource source, QWidget& window);
