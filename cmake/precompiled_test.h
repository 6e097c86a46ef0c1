// Headers that many tests include.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "precompiled_core.h"

#include <QTemporaryDir>
#include <deque>
#include <gtest/gtest.h>
#include <random>
