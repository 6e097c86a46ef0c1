// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_quality.h"
