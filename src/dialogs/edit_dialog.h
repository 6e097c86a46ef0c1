// What dialogs share that edit something: a copy is edited and handed over when it is right.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <utility>

/// What a dialog edits: a copy beside the value as it was.
template<typename Value> class EditedCopy {
public:
    explicit EditedCopy(Value original) : original_(std::move(original)), edited_(original_) {}

    [[nodiscard]] Value& edited() { return edited_; }
    [[nodiscard]] const Value& edited() const { return edited_; }
    [[nodiscard]] bool isChanged() const { return !(edited_ == original_); }
    /// The value to hand over; what was edited counts as the original from now on.
    const Value& applied() { return original_ = edited_; }
    void revert() { edited_ = original_; }

private:
    Value original_;
    Value edited_;
};

/// A dialog with any of the buttons "OkBtn", "ApplyBtn", "ResetBtn" and "CancelBtn" in its form.
/// OK and Apply call apply(), Reset and Cancel revert(). Apply and Reset are enabled while there is
/// a change.
class EditDialog : public QDialog {
    Q_OBJECT

public:
    using QDialog::QDialog;

    /// Closes the dialog, unless apply() refuses. The dialog may be deleted in messages of apply().
    void accept() override;
    void reject() override;

protected:
    /// To be called once the form is set up: connects the buttons and prepares the dialog as
    /// prepareDialog() does.
    void setUpEditing();
    /// To be called after each edit.
    void refreshButtons();

    /// Hands over what was edited. False when it is not right and the dialog has to stay, after a
    /// message.
    [[nodiscard]] virtual bool apply() = 0;
    /// Takes back what was edited and not applied.
    virtual void revert() {}
    [[nodiscard]] virtual bool isChanged() const { return false; }

private:
    void applyAndStay();
};
