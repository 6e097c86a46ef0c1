// Headers that nearly every file with widgets includes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "precompiled_core.h"
#include <QtGui/QtGui>
#include <QtWidgets/QtWidgets>
