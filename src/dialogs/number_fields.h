// Fields in which the operator types numbers.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDoubleSpinBox>

class QLineEdit;

/// A spin box for thresholds: two decimals as a rule, four where the value needs them.
class ThresholdSpinBox : public QDoubleSpinBox {
public:
    explicit ThresholdSpinBox(QWidget* parent);

protected:
    [[nodiscard]] QString textFromValue(double value) const override;
};

/// The number in a line edit, with a point as its decimal mark and blanks around it ignored; NaN
/// when the text is no number, or one beyond what a float holds.
[[nodiscard]] double numberIn(const QLineEdit& field);

/// Writes a number with up to six digits, as numberIn() reads it.
void showNumber(QLineEdit& field, double number);

/// What a number may be, bounds included, and the unit that it is in, which may be empty.
struct NumberRange {
    double minimum = 0.0;
    double maximum = 0.0;
    QString unit;
};

/// "The width must be a number from 0 to 100 mm.", with `name` for "The width", when the text of
/// the field is no number of the range; else empty.
[[nodiscard]] QString numberFault(const QLineEdit& field, const QString& name,
                                  const NumberRange& range);
