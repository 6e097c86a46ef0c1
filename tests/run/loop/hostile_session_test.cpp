// Whole runs on files that are damaged, late or missing.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/simulated_session.h"

#include "scanner_simulator/delivery.h"

namespace {

constexpr int mosaicBytes = 2 * 32 * 32;
const QByteArray pixelKey = QByteArray::fromHex("e07f1000");
const char* const lateFirstFile = "TIME OUT: Expected first file did not arrive!";
const char* const lateFile = "TIME OUT ERROR: expected file did not arrive!";
const char* const missingKey = "Header does not contain \"begin-of-data\" key (7FE0,0010) !";
const char* const tooShort = "holds less image data than stated in the settings file !";

// Twelve volumes of 16 x 16 x 4 samples, two of them skipped.
SimulationOptions hostileOptions(ScannerType type, int size) {
    SimulationOptions chosen = smallScan(size, 4, 12);
    chosen.type = type;
    return chosen;
}

struct HostileSession : SimulatedSession {
    explicit HostileSession(ScannerType type) : SimulatedSession(hostileOptions(type, 16)) {}
};

void expectMessages(const QStringList& shown, const QStringList& endings) {
    ASSERT_EQ(shown.size(), endings.size()) << shown.join('\n').toStdString();
    for (int i = 0; i < shown.size(); ++i)
        EXPECT_TRUE(shown[i].endsWith(endings[i])) << shown[i].toStdString();
}

class HostileSessionTest : public testing::TestWithParam<ScannerType> {
protected:
    [[nodiscard]] bool isMosaic() const { return GetParam() == ScannerType::SiemensMosaic; }
};

INSTANTIATE_TEST_SUITE_P(Types, HostileSessionTest,
                         testing::Values(ScannerType::SiemensMosaic, ScannerType::Dicom));

} // namespace

TEST_P(HostileSessionTest, FirstFileCutAnywhereEndsTheStartWithTheReason) {
    HostileSession hostile(GetParam());
    hostile.writeAll();
    const ScannerFile good = hostile.scan.files(0)[0];
    const qsizetype key = good.bytes.lastIndexOf(pixelKey);
    for (qsizetype size = 0; size < good.bytes.size(); size += 100) {
        SCOPED_TRACE(size);
        hostile.write({good.name, good.bytes.first(size)});
        QStringList endings{lateFirstFile};
        if (!isMosaic() || size >= mosaicBytes)
            endings.prepend(size < key + pixelKey.size() ? missingKey : tooShort);
        expectMessages(hostile.run(), endings);
        EXPECT_TRUE(hostile.session.report.startFailed);
    }
    hostile.write(good);
    expectMessages(hostile.run(), {});
    EXPECT_EQ(hostile.savedVolumes(), 10);
}

TEST_P(HostileSessionTest, FirstFileOfAnotherKindIsRefusedWithoutWaiting) {
    HostileSession hostile(GetParam());
    hostile.writeAll();
    const ScannerFile good = hostile.scan.files(0)[0];
    const SimulatedScan smaller(hostileOptions(GetParam(), 8));
    const auto changed = [&good](const char* from, const char* to) {
        return QByteArray(good.bytes).replace(QByteArray::fromHex(from), QByteArray::fromHex(to));
    };
    const QStringList refused{tooShort, lateFirstFile};
    const struct {
        const char* name;
        QByteArray bytes;
        QStringList endings;
        bool isInHeader = false; ///< which is not read of single slices
    } cases[] = {
        {"smaller", smaller.files(0)[0].bytes, refused},
        {"compressed",
         changed("312e322e3834302e31303030382e312e322e31", // 1.2.840.10008.1.2.1
                 "312e322e3834302e31303030382e312e322e35"),
         {"export it uncompressed !", lateFirstFile}},
        {"other dimensions",
         changed("28001100555302002000", "28001100555302004000"),
         {"ERROR - dimensions of DICOM file (32 x 64) do not match those in VCO file (32 x 32) !"},
         true},
        {"an element of 4 GiB",
         changed("0800050043530a00", "08000500554e0000feffffff"),
         {"ERROR: Read past the end of file, can not read file as regular DICOM!"},
         true}};
    for (const auto& [name, bytes, endings, isInHeader] : cases) {
        SCOPED_TRACE(name);
        const qint64 start = hostile.pump.milliseconds();
        hostile.write({good.name, bytes});
        expectMessages(hostile.run(), isInHeader && !isMosaic() ? QStringList() : endings);
        EXPECT_LT(hostile.pump.milliseconds() - start, 3000);
    }
    QFile huge(hostile.watchFolder() + good.name);
    ASSERT_TRUE(huge.resize(qint64(4) << 30)); // sparse
    expectMessages(hostile.run(), {good.name + " !", lateFirstFile});
    hostile.write(good);
    expectMessages(hostile.run(), {});
    EXPECT_EQ(hostile.savedVolumes(), 10);
}

TEST_P(HostileSessionTest, TroubleKeepsWhatWasMeasuredAndNothingIsLostWithinTheTimeOut) {
    using Trouble = std::function<void(HostileSession&)>;
    const auto delivered = [](const DeliveryOptions& delivery) -> Trouble {
        return [delivery](HostileSession& hostile) {
            const VolumeSource source{.nrOfVolumes = 12, .files = {}};
            for (const auto& [volume, due] : deliverySchedule(delivery, source))
                for (ScannerFile file : hostile.scan.files(volume)) {
                    if (delivery.truncated.contains(volume + 1))
                        file.bytes.truncate(file.bytes.size() / 2);
                    hostile.pump.after(due + 600, [&hostile, file] { hostile.write(file); });
                }
        };
    };
    const Trouble backwards = [](HostileSession& hostile) {
        for (int volume = 0; volume < 12; ++volume) {
            std::vector<ScannerFile> files = hostile.scan.files(volume);
            for (size_t i = 0; i < files.size(); ++i)
                hostile.pump.after(200 * (volume + 1) - 20 * qint64(i),
                                   [&hostile, file = files[i]] { hostile.write(file); });
        }
    };
    const Trouble folderAway = [](HostileSession& hostile) {
        hostile.writeAll();
        const QString folder = hostile.folder.filePath("incoming");
        hostile.pump.after(200, [folder] { QDir().rename(folder, folder + "-away"); });
        hostile.pump.after(9000, [folder] { QDir().rename(folder + "-away", folder); });
    };
    const Trouble otherSeries = [](HostileSession& hostile) {
        hostile.writeAll();
        for (int volume = 0; volume < 12; ++volume)
            for (const ScannerFile& file : hostile.scan.files(volume))
                hostile.write({"2" + file.name, file.bytes + file.bytes});
    };
    // The settings give a file 30 seconds; the seventh volume is the fifth analysed one.
    const std::tuple<const char*, Trouble, QStringList, int> cases[] = {
        {"backwards", backwards, {}, 10},
        {"folder away", folderAway, {}, 10},
        {"other series", otherSeries, {}, 10},
        {"late", delivered({.late = {{7, 5000}}}), {}, 10},
        {"too late", delivered({.late = {{7, 40000}}}), {lateFile}, 4},
        {"missing", delivered({.missing = {7}}), {lateFile}, 4},
        {"truncated", delivered({.truncated = {7}}), {missingKey, lateFile}, 4}};
    for (const auto& [name, trouble, endings, saved] : cases) {
        SCOPED_TRACE(name);
        HostileSession hostile(GetParam());
        trouble(hostile);
        expectMessages(hostile.run(), endings);
        EXPECT_EQ(hostile.savedVolumes(), saved);
        EXPECT_FALSE(hostile.session.report.startFailed);
    }
}

// A file is missing, incomplete or empty when the program is told to end.
TEST_P(HostileSessionTest, AWaitThatIsGivenUpEndsTheRunWithoutAWord) {
    using Damage = std::function<QByteArray(QByteArray)>;
    const Damage damages[] = {
        [](const QByteArray&) { return QByteArray(); },
        [](const QByteArray& bytes) { return bytes.first(bytes.size() / 2); },
        [](QByteArray bytes) {
            const qsizetype pixels = bytes.lastIndexOf(pixelKey) + 12;
            return bytes.first(pixels) + QByteArray(bytes.size() - pixels, '\0');
        },
    };
    for (const Damage& damage : damages)
        for (const int volume : {0, 6}) {
            SCOPED_TRACE(testing::Message() << (&damage - damages) << ' ' << volume);
            HostileSession hostile(GetParam());
            hostile.writeAll();
            for (const ScannerFile& file : hostile.scan.files(volume)) {
                const QByteArray bytes = damage(file.bytes);
                hostile.write({file.name, bytes});
                if (bytes.isEmpty())
                    QFile::remove(hostile.watchFolder() + file.name);
            }
            hostile.pump.after(500, [&] { hostile.pump.giveUpWaiting(); });
            expectMessages(hostile.run(), {});
            EXPECT_LE(hostile.pump.milliseconds(), 650);
            EXPECT_EQ(hostile.session.report.startFailed, volume == 0);
            EXPECT_EQ(hostile.session.report.currentVolume, volume == 0 ? -1 : 3);
            EXPECT_TRUE(volume == 0 || hostile.savedVolumes() == 4);
        }
}
