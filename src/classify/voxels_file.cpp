// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/voxels_file.h"
