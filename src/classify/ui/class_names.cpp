// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/class_names.h"

#include <algorithm>

std::vector<NamedClass> classesOfLabels(std::vector<double> labels) {
    std::ranges::sort(labels);
    labels.erase(std::ranges::unique(labels).begin(), labels.end());
    if (labels == std::vector<double>{-1.0, 1.0})
        return {{1.0, "Class 1"}, {-1.0, "Class 2"}};
    std::vector<NamedClass> classes;
    for (const double label : labels)
        classes.push_back({label, QStringLiteral("Class %1").arg(label)});
    return classes;
}
