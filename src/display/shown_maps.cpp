// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/shown_maps.h"
