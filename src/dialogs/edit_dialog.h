// Base of dialogs that edit a value: a copy is edited, and applied when it is valid.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <utility>

/// The edited copy of a value, and the original.
template<typename Value> class EditedCopy {
public:
    explicit EditedCopy(Value original) : original_(std::move(original)), edited_(original_) {}

    [[nodiscard]] Value& edited() { return edited_; }
    [[nodiscard]] const Value& edited() const { return edited_; }
    [[nodiscard]] bool isChanged() const { return !(edited_ == original_); }
    /// The value to apply, which becomes the new original.
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

    /// Closes the dialog, unless apply() refuses. The dialog may be deleted during messages of
    /// apply().
    void accept() override;
    void reject() override;

protected:
    /// To be called once the form is set up: connects the buttons and prepares the dialog as
    /// prepareDialog() does.
    void setUpEditing();
    /// To be called after each edit.
    void refreshButtons();

    /// Applies the edits. False, after a message, when they are invalid and the dialog stays open.
    [[nodiscard]] virtual bool apply() = 0;
    /// Discards edits that were not applied.
    virtual void revert() {}
    [[nodiscard]] virtual bool isChanged() const { return false; }
    /// The press of Apply.
    void applyAndStay();
};
