// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_maps.h"
