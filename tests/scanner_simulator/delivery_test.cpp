// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/delivery.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <utility>

namespace {

/// Time passes when it is waited for; every wait notes the sizes of the files in the folder.
class NotingClock : public DeliveryClock {
public:
    explicit NotingClock(QString folder) : folder_(std::move(folder)) {}
    [[nodiscard]] int64_t milliseconds() const override { return now_; }
    [[nodiscard]] bool waitUntil(int64_t milliseconds) override {
        notes << note();
        now_ = std::max(now_, milliseconds);
        return true;
    }
    [[nodiscard]] QString note() const {
        QStringList files;
        for (const QFileInfo& file :
             QDir(folder_).entryInfoList(QDir::Files | QDir::Hidden, QDir::Name))
            files << QString("%1=%2").arg(file.fileName()).arg(file.size());
        return QString("%1: ").arg(now_) + files.join(' ');
    }
    QStringList notes;

private:
    QString folder_;
    int64_t now_ = 5000;
};

VolumeSource source(int nrOfVolumes, int nrOfFiles) {
    return {nrOfVolumes, nrOfFiles > 1, false, 1000, [nrOfFiles](int volume) {
                std::vector<ScannerFile> files;
                for (int file = 0; file < nrOfFiles; ++file)
                    files.push_back(
                        {QString("%1%2").arg(QChar('a' + volume)).arg(file), QByteArray(100, 'x')});
                return std::optional(files);
            }};
}

QStringList delivered(const DeliveryOptions& options, const VolumeSource& volumes) {
    QTemporaryDir folder;
    NotingClock clock(folder.path());
    EXPECT_EQ(deliver(options, volumes, folder.path(), clock, [](const QString&) {}).result,
              DeliveryResult::Done);
    return clock.notes << clock.note();
}

} // namespace

TEST(DeliverySchedule, FollowsTheRepetitionTimeAndTheFaults) {
    const auto schedule = [](const DeliveryOptions& options, int nrOfFiles = 1) {
        return deliverySchedule(options, source(3, nrOfFiles));
    };
    using Steps = std::vector<DeliveryStep>;
    EXPECT_EQ(schedule({.atRepetitionTime = false}), (Steps{{0, 0}, {1, 0}, {2, 0}}));
    EXPECT_EQ(schedule({.speed = 4.0, .startDelay = 7}), (Steps{{0, 257}, {1, 507}, {2, 757}}));
    EXPECT_EQ(schedule({.late = {{1, 1500}}}), (Steps{{1, 2000}, {0, 2500}, {2, 3000}}));
    EXPECT_EQ(schedule({.missing = {2}}), (Steps{{0, 1000}, {2, 3000}}));
    EXPECT_EQ(schedule({.outOfOrder = true}), (Steps{{1, 1000}, {0, 2000}, {2, 3000}}));
    EXPECT_EQ(schedule({.outOfOrder = true}, 2), (Steps{{0, 1000}, {1, 2000}, {2, 3000}}));
}

TEST(Delivery, FilesAppearWholeOrGrow) {
    EXPECT_EQ(delivered({.truncated = {2}}, source(2, 1)),
              QStringList({"5000: ", "6000: a0=100", "7000: a0=100 b0=50"}));
    EXPECT_EQ(delivered({.growing = true}, source(1, 1)),
              QStringList({"5000: ", "6000: a0=25", "6100: a0=50", "6200: a0=75", "6300: a0=100"}));
}
