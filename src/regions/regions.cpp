// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/regions.h"

RegionOfInterest& Regions::add(RegionOfInterest region) {
    return *regions_.emplace_back(std::make_unique<RegionOfInterest>(std::move(region)));
}
