// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/vom_file.h"
