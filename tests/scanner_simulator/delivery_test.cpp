// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/command_line.h"
#include "scanner_simulator/replay_folder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// Time passes when it is waited for; every wait notes the sizes of the files in the folder.
class NotingClock : public DeliveryClock {
public:
    explicit NotingClock(QString folder) : folder_(std::move(folder)) {}
    [[nodiscard]] int64_t milliseconds() const override { return now_; }
    [[nodiscard]] bool waitUntil(int64_t milliseconds) override {
        notes << note();
        now_ = std::max(now_, milliseconds);
        return now_ <= interruptAfter;
    }
    [[nodiscard]] QString note() const {
        QStringList files;
        for (const QFileInfo& file :
             QDir(folder_).entryInfoList(QDir::Files | QDir::Hidden, QDir::Name))
            files << QString("%1=%2").arg(file.fileName()).arg(file.size());
        return QString("%1: ").arg(now_) + files.join(' ');
    }
    QStringList notes;
    int64_t interruptAfter = 1000000;

private:
    QString folder_;
    int64_t now_ = 5000;
};

VolumeSource source(int nrOfVolumes, int nrOfFiles) {
    return {nrOfVolumes, nrOfFiles, 1000, [nrOfFiles](int volume) {
                std::vector<ScannerFile> files;
                for (int file = 0; file < nrOfFiles; ++file)
                    files.push_back(
                        {QString("%1%2").arg(QChar('a' + volume)).arg(file), QByteArray(100, 'x')});
                return std::optional(files);
            }};
}

QStringList delivered(const DeliveryOptions& options, const VolumeSource& volumes,
                      DeliveryResult expected = DeliveryResult::Done,
                      int64_t interruptAfter = 1000000) {
    QTemporaryDir folder;
    NotingClock clock(folder.path());
    clock.interruptAfter = interruptAfter;
    EXPECT_EQ(deliver(options, volumes, folder.path(), clock, [](const QString&) {}).result,
              expected);
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

TEST(Delivery, EndsWhenInterruptedOrUnableToWrite) {
    EXPECT_EQ(delivered({}, source(5, 1), DeliveryResult::Interrupted, 7500).constLast(),
              "8000: a0=100 b0=100");
    NotingClock clock("/");
    const DeliveryOutcome outcome =
        deliver({}, source(1, 1), "/nowhere/at/all/", clock, [](const QString&) {});
    EXPECT_EQ(outcome.result, DeliveryResult::Failed);
    EXPECT_EQ(outcome.problem, "The file \"/nowhere/at/all/a0\" can't be written.");
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

TEST(CommandLine, RefusesWhatDoesNotFit) {
    struct Case {
        QStringList arguments;
        const char* problem; ///< its beginning
    };
    const Case cases[] = {
        {{"--matrix", "64"}, "The value \"64\" doesn't fit option --matrix."},
        {{"--matrix", "64x999999"}, "The matrix rows (999999) must lie between"},
        {{"--volumes", "2"}, "The number of volumes to skip (2) must lie between 0 and 1."},
        {{"--volumes", "700", "--block", "1"},
         "Blocks of 1 volumes give a condition more than 300"},
        {{"--late", "3"}, "The value \"3\" doesn't fit option --late."},
        {{"--missing", "153"}, "There is no volume 153."},
        {{"--name", "a/b"}, "The name \"a/b\" can't"},
        {{"--as-fast", "--speed", "2"}, "--as-fast excludes"},
        {{"--replay", "x", "--runs", "2"}, "A replay is one run."},
    };
    for (const Case& c : cases) {
        const SimulatorCommand command =
            parseCommandLine(QStringList("scanner-simulator") + c.arguments);
        EXPECT_TRUE(command.problem.startsWith(c.problem)) << command.problem.toStdString();
    }
}
