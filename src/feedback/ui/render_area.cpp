// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/render_area.h"
