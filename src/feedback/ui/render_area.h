// The small widgets that show a picture drawn elsewhere.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBrush>
#include <QPen>
#include <QPixmap>
#include <QWidget>
