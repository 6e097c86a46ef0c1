// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/time_course_statistics.h"
