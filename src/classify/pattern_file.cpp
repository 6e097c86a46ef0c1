// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/pattern_file.h"
