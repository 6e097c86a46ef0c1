// The application object.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>

/// Sets what all windows share: style, palette, number format, and the name that the folder of the
/// application data bears.
class VeloCortivoApplication : public QApplication {
    Q_OBJECT

public:
    VeloCortivoApplication(int& argc, char** argv);
};
