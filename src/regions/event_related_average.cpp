// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/event_related_average.h"
