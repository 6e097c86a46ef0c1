// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/delivery.h"
#include "scanner_simulator/replay_folder.h"

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
    using Steps = std::vector<DeliveryStep>;
    struct Case {
        const char* what;
        DeliveryOptions options;
        int nrOfFiles;
        Steps expected;
    };
    const Case cases[] = {
        {"plain", {}, 1, {{0, 1000}, {1, 2000}, {2, 3000}}},
        {"fast", {.atRepetitionTime = false}, 1, {{0, 0}, {1, 0}, {2, 0}}},
        {"speed", {.speed = 4.0, .startDelay = 7}, 1, {{0, 257}, {1, 507}, {2, 757}}},
        {"late", {.late = {{1, 1500}}}, 1, {{1, 2000}, {0, 2500}, {2, 3000}}},
        {"missing", {.missing = {2}}, 1, {{0, 1000}, {2, 3000}}},
        {"pairs", {.outOfOrder = true}, 1, {{1, 1000}, {0, 2000}, {2, 3000}}},
        {"slices", {.outOfOrder = true}, 2, {{0, 1000}, {1, 2000}, {2, 3000}}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(deliverySchedule(c.options, source(3, c.nrOfFiles)), c.expected) << c.what;
}

TEST(Delivery, FilesAppearWholeOrGrow) {
    EXPECT_EQ(delivered({.truncated = {2}}, source(2, 1)),
              QStringList({"5000: ", "6000: a0=100", "7000: a0=100 b0=50"}));
    EXPECT_EQ(delivered({.growing = true}, source(1, 1)),
              QStringList({"5000: ", "6000: a0=25", "6100: a0=50", "6200: a0=75", "6300: a0=100"}));
    EXPECT_EQ(delivered({.growing = true, .outOfOrder = true}, source(1, 2)).value(1),
              "6000: a1=25");
}

TEST(Delivery, OneFileGrowsInTheOrderOfItsVolumes) {
    VolumeSource volumes{3, false, true, 1000, [](int volume) {
                             return std::optional(std::vector<ScannerFile>{
                                 {"a", QByteArray(100, char('0' + volume)), true}});
                         }};
    EXPECT_EQ(delivered({.late = {{1, 1500}}, .truncated = {2}}, volumes),
              QStringList({"5000: ", "7500: a=100", "7500: a=150", "8000: a=250"}));
    EXPECT_EQ(delivered({.growing = true, .missing = {2, 3}}, volumes),
              QStringList({"5000: ", "6000: a=25", "6100: a=50", "6200: a=75", "6300: a=100"}));
}

TEST(Delivery, AProtocolGrowsWithTheScan) {
    QTemporaryDir folder;
    NotingClock clock(folder.path());
    VolumeSource volumes = source(2, 1);
    volumes.protocol = {folder.filePath("p"), [](int volume) {
                            return QByteArray(volume == 0 ? "1 0\n2 0\n" : "3 1\n");
                        }};
    const auto deliverAll = [&](const DeliveryOptions& options) {
        EXPECT_EQ(deliver(options, volumes, folder.path(), clock, [](const QString&) {}).result,
                  DeliveryResult::Done);
        return std::exchange(clock.notes, {}) << clock.note();
    };
    // Its lines come in time, however late a volume is.
    EXPECT_EQ(deliverAll({.late = {{1, 1500}}}),
              QStringList({"5000: ", "6000: p=8", "7000: p=12", "7000: b0=100 p=12",
                           "7500: a0=100 b0=100 p=12"}));
    ASSERT_TRUE(QFile::remove(folder.filePath("p")));
    EXPECT_EQ(deliverAll({.halfLines = true, .missing = {1, 2}}),
              QStringList({"7500: a0=100 b0=100", "8500: a0=100 b0=100 p=2",
                           "8600: a0=100 b0=100 p=6", "8700: a0=100 b0=100 p=8",
                           "9500: a0=100 b0=100 p=10", "9600: a0=100 b0=100 p=12"}));
}

TEST(ReplayFolder, TakesFilesInTheOrderOfTheirNumbers) {
    QTemporaryDir folder;
    for (const char* name : {"run-0010.dcm", "run-9.dcm", "run-0002.dcm", "run-11.dcm", "a.dcm"}) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(name) > 0);
    }
    const ReplayFolder replay(folder.path(), 2);
    EXPECT_EQ(replay.names(),
              QStringList({"a.dcm", "run-0002.dcm", "run-9.dcm", "run-0010.dcm", "run-11.dcm"}));
    ASSERT_EQ(replay.nrOfVolumes(), 2);
    const auto second = replay.files(1);
    ASSERT_TRUE(second.has_value());
    EXPECT_EQ((*second)[1].name, "run-0010.dcm");
    EXPECT_EQ((*second)[1].bytes, "run-0010.dcm");
}
