// Headers that many tests of widgets include.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "precompiled_test.h"
#include "precompiled_widgets.h"

#include <QSignalSpy>
#include <QTest>
