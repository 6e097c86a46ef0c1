// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/number_fields.h"

#include <QLineEdit>
#include <cmath>
#include <limits>

int decimalsFor(double value) {
    constexpr double twoDecimals = 0.0095; // 0.01 as a float is smaller
    constexpr int most = 9;
    const double magnitude = std::abs(value);
    if (magnitude == 0.0 || !(magnitude < twoDecimals))
        return 2;
    return int(std::min(1.0 - std::floor(std::log10(magnitude)), double(most)));
}

ThresholdSpinBox::ThresholdSpinBox(QWidget* parent) : QDoubleSpinBox(parent) {
    setDecimals(4); // the smallest threshold is 0.0001
    setRange(0.0, 9999.0);
    setSingleStep(0.1);
}

QString ThresholdSpinBox::textFromValue(double value) const {
    const bool twoSuffice = std::abs(value * 100.0 - std::round(value * 100.0)) < 1e-3;
    const int decimals = std::min(decimalsFor(value), this->decimals());
    return locale().toString(value, 'f', twoSuffice && decimals == 2 ? 2 : std::max(decimals, 4));
}

double numberIn(const QLineEdit& field) {
    bool ok = false;
    const double number = field.text().trimmed().toDouble(&ok);
    const bool usable = ok && std::abs(number) <= double(std::numeric_limits<float>::max());
    return usable ? number : std::numeric_limits<double>::quiet_NaN();
}

void showNumber(QLineEdit& field, double number) {
    field.setText(QString::number(number));
}

QString numberFault(const QLineEdit& field, const QString& name, const NumberRange& range) {
    const double number = numberIn(field);
    if (number >= range.minimum && number <= range.maximum)
        return {};
    return QStringLiteral("%1 must be a number from %2 to %3%4.")
        .arg(name, QString::number(range.minimum), QString::number(range.maximum),
             range.unit.isEmpty() ? QString() : ' ' + range.unit);
}
