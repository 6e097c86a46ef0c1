// What classes are called, by their labels in patterns and models.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

struct NamedClass {
    double label = 0.0;
    QString name; ///< "Class 1"
};

/// The different labels in the order of their classes. Of the labels 1 and -1 the second class is
/// -1; all others rise, and a class has its label as its number.
[[nodiscard]] std::vector<NamedClass> classesOfLabels(std::vector<double> labels);
