// Headers that nearly every test includes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "precompiled_core.h"
#include <gtest/gtest.h>
