// Reading a model file (.svm): it is checked first, since libsvm's reader trusts what it reads.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_library.h"

#include <QByteArray>
#include <QString>

/// What is wrong with the content of a model file, as a sentence; empty when libsvm can read it and
/// this program can use it: a machine for two or more classes (C-SVC or nu-SVC with a linear,
/// polynomial, RBF or sigmoid kernel), with as many labels, constants and support vectors as it
/// states, indices of features that are positive and rise within each support vector, and finite
/// numbers. A machine for this program has at most 1000 classes and 2^24 features.
[[nodiscard]] QString faultOfModelFile(const QByteArray& content);

/// Checks and reads without a message. What is wrong, as a sentence, with the model unchanged;
/// empty when it was read.
[[nodiscard]] QString readModelQuietly(const QString& path, SVMModel& model);
/// The same with a message. False after it, with the model unchanged.
[[nodiscard]] bool readModelFile(const QString& path, SVMModel& model);
