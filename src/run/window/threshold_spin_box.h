// A number field for thresholds: two decimals as a rule, four where the value needs them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDoubleSpinBox>
#include <cmath>

class ThresholdSpinBox : public QDoubleSpinBox {
public:
    explicit ThresholdSpinBox(QWidget* parent) : QDoubleSpinBox(parent) {
        setDecimals(4); // the smallest threshold is 0.0001
        setRange(0.0, 9999.0);
        setSingleStep(0.1);
    }

protected:
    [[nodiscard]] QString textFromValue(double value) const override {
        const bool twoSuffice = std::abs(value * 100.0 - std::round(value * 100.0)) < 1e-3;
        return locale().toString(value, 'f', twoSuffice ? 2 : 4);
    }
};
