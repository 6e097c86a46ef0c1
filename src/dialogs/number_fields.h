// Fields in which the operator types numbers.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDoubleSpinBox>

class QLineEdit;

/// Decimals that show two digits of a small value: 2 for 0 and from 0.01 on, 4 for 0.0031, at
/// most 9.
[[nodiscard]] int decimalsFor(double value);

/// A spin box for thresholds: two decimals, or four if the value needs them, or as many as a
/// smaller one needs where more are allowed.
class ThresholdSpinBox : public QDoubleSpinBox {
public:
    explicit ThresholdSpinBox(QWidget* parent);

protected:
    [[nodiscard]] QString textFromValue(double value) const override;
};

/// The number in a line edit, with "." as decimal point, ignoring blanks around it; NaN when the
/// text is not a number or exceeds a float.
[[nodiscard]] double numberIn(const QLineEdit& field);

/// Writes a number with up to six digits, as numberIn() reads it.
void showNumber(QLineEdit& field, double number);

/// The allowed range, bounds included, and the unit, which may be empty.
struct NumberRange {
    double minimum = 0.0;
    double maximum = 0.0;
    QString unit;
};

/// "The width must be a number from 0 to 100 mm.", with `name` for "The width", when the field has
/// no number in the range; otherwise empty.
[[nodiscard]] QString numberFault(const QLineEdit& field, const QString& name,
                                  const NumberRange& range);
