// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/delivery.h"

#include <gtest/gtest.h>

TEST(DeliverySchedule, FollowsTheRepetitionTimeAndTheFaults) {
    const auto schedule = [](const DeliveryOptions& options, bool severalFiles = false) {
        return deliverySchedule(options, {3, severalFiles, false, 1000, {}});
    };
    using Steps = std::vector<DeliveryStep>;
    EXPECT_EQ(schedule({.atRepetitionTime = false}), (Steps{{0, 0}, {1, 0}, {2, 0}}));
    EXPECT_EQ(schedule({.speed = 4.0, .startDelay = 7}), (Steps{{0, 257}, {1, 507}, {2, 757}}));
    EXPECT_EQ(schedule({.late = {{1, 1500}}}), (Steps{{1, 2000}, {0, 2500}, {2, 3000}}));
    EXPECT_EQ(schedule({.missing = {2}}), (Steps{{0, 1000}, {2, 3000}}));
    EXPECT_EQ(schedule({.outOfOrder = true}), (Steps{{1, 1000}, {0, 2000}, {2, 3000}}));
    EXPECT_EQ(schedule({.outOfOrder = true}, true), (Steps{{0, 1000}, {1, 2000}, {2, 3000}}));
}
