// The example plug-ins in a process that exports the interface, through whole runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/program_fixture.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTextEdit>
#include <arpa/inet.h>
#include <random>
#include <sys/socket.h>
#include <unistd.h>

namespace {

/// Types the same into each box.
class TypingOperator : public UnattendedMessages {
public:
    explicit TypingOperator(const QString& typed)
        : typed_(typed), before_(installMessageHandler(this)) {}
    ~TypingOperator() override { installMessageHandler(before_); }
    bool ask(const QString&, const QString&, DefaultAnswer) override { return true; }
    std::optional<int> inputInteger(const InputTexts&, int, const IntegerBounds&) override {
        return typed_.toInt();
    }
    std::optional<QString> inputText(const InputTexts&, const QString&) override { return typed_; }

private:
    QString typed_;
    MessageHandler* before_;
};

/// A receiver on a port of its own.
class Receiver {
public:
    Receiver() {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address_;
        auto* address = reinterpret_cast<sockaddr*>(&address_);
        EXPECT_EQ(bind(socket_, address, size), 0);
        EXPECT_EQ(getsockname(socket_, address, &size), 0);
    }
    ~Receiver() { close(socket_); }
    [[nodiscard]] QString port() const { return QString::number(ntohs(address_.sin_port)); }
    /// The next datagram that has come; an empty object without one.
    [[nodiscard]] QJsonObject next() const {
        QByteArray bytes(65536, '\0');
        const ssize_t size = recv(socket_, bytes.data(), size_t(bytes.size()), MSG_DONTWAIT);
        return QJsonDocument::fromJson(bytes.first(std::max<ssize_t>(size, 0))).object();
    }

private:
    int socket_ = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address_{};
};

double meanOf(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / double(values.size());
}

double covariance(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0.0;
    for (size_t i = 0; i < a.size(); ++i)
        sum += (a[i] - meanOf(a)) * (b[i] - meanOf(b));
    return sum / double(a.size() - 1);
}

constexpr VolumeSize noisySize{32, 32, 16};
constexpr std::array<double, 3> noiseFWHM = {3.0, 2.5, 2.0}; // voxels, along x, y and z

/// White noise, smoothed along each axis by a Gaussian. It is made wider by the reach of the
/// Gaussian and then cut, so that its ends don't depend on each other.
std::vector<double> smoothNoise(std::mt19937& random) {
    constexpr int reach = 6;
    const std::array<int, 3> size = {noisySize.x + 2 * reach, noisySize.y + 2 * reach,
                                     noisySize.slices + 2 * reach};
    const std::array<int, 3> strides = {1, size[0], size[0] * size[1]};
    std::vector<double> noise(size_t(strides[2]) * size_t(size[2]));
    for (double& value : noise)
        value = std::normal_distribution<double>(0.0, 500.0)(random);
    for (size_t axis = 0; axis < 3; ++axis) {
        const std::vector<double> before = noise;
        const double sigma = noiseFWHM[axis] / std::sqrt(8.0 * std::log(2.0));
        for (int i = 0; i < int(noise.size()); ++i) {
            noise[size_t(i)] = 0.0;
            for (int d = -reach; d <= reach; ++d)
                if (const int at = i + d * strides[axis]; at >= 0 && at < int(noise.size()))
                    noise[size_t(i)] +=
                        std::exp(-d * d / (2 * sigma * sigma)) / sigma * before[size_t(at)];
        }
    }
    std::vector<double> inner;
    for (int z = 0; z < noisySize.slices; ++z)
        for (int y = 0; y < noisySize.y; ++y)
            for (int x = 0; x < noisySize.x; ++x)
                inner.push_back(
                    noise[size_t(x + reach + (y + reach) * strides[1] + (z + reach) * strides[2])]);
    return inner;
}

} // namespace

class PluginExamples : public PluginProgram {
protected:
    PluginExamples()
        : PluginProgram(QCoreApplication::applicationDirPath() + "/../plugin_examples/") {
        beginProgram();
    }

    void launch(const QString& name, const QString& typed = "") {
        const TypingOperator typing(typed);
        const std::vector<PluginDescription>& found = host.discover().plugins;
        const auto plugin = std::ranges::find(found, name, &PluginDescription::name);
        ASSERT_NE(plugin, found.end()) << QDir(host.pluginFolder()).absolutePath().toStdString();
        host.launch(int(plugin - found.begin()));
        ASSERT_TRUE(host.isRunning());
    }
    /// The lines in the window of the plug-in.
    [[nodiscard]] static QStringList logged() {
        for (QWidget* widget : QApplication::allWidgets())
            if (auto* text = qobject_cast<QTextEdit*>(widget))
                return text->toPlainText().split('\n');
        return {};
    }
    /// Runs the session; the rectangles are drawn when its first volume is over.
    void runWithRegions(const std::vector<VoxelRectangle>& rectangles) {
        ProbeListener operatorHand(session().listeners, ListenerPlace::Dialogs);
        operatorHand.onEndOfVolume = [&](int volume) {
            for (const VoxelRectangle& rectangle : rectangles)
                if (volume == 0) {
                    EXPECT_TRUE(session().regions.selectRectangle(rectangle));
                }
        };
        session().runButtonPressed();
    }
    [[nodiscard]] double sample(size_t voxel, int volume) const {
        return SessionFixture::session.functionalDocument->project.volumes[size_t(volume)][voxel];
    }
    /// Means over the rectangle, from the samples of the run.
    [[nodiscard]] std::vector<double> timeCourse(const VoxelRectangle& rectangle, int volumes) {
        const VolumeSize size = session().functionalDocument->project.size();
        std::vector<double> course;
        for (int volume = 0; volume < volumes; ++volume) {
            std::vector<double> samples;
            for (int y = rectangle.top; y < rectangle.bottom; ++y)
                for (int x = rectangle.left; x < rectangle.right; ++x)
                    samples.push_back(
                        sample(size_t((rectangle.slice * size.y + y) * size.x + x), volume));
            course.push_back(meanOf(samples));
        }
        return course;
    }
};

TEST_F(PluginExamples, GreetingFollowsTheRun) {
    writeSession(7, 2);
    host.launch(0); // nothing was discovered
    for (const PluginDescription& plugin : host.discover().plugins)
        EXPECT_FALSE(plugin.description.isEmpty() || plugin.author.isEmpty())
            << plugin.name.toStdString();
    launch("Greeting", "Ada");
    session().runButtonPressed();
    const QStringList lines = logged();
    ASSERT_EQ(lines.size(), 7) << lines.join('|').toStdString();
    EXPECT_EQ(lines[0], "Hello, Ada! This is interface 3.2.5.");
    EXPECT_EQ(lines[3], "Volume 3 of 5, condition 0");
    EXPECT_EQ(lines[4], "Volume 4 of 5, condition 1");
    EXPECT_EQ(lines[6], "Thank you, Ada. 5 volumes were measured.");
}

TEST_F(PluginExamples, TemporalSNRIsThatOfTheVolumesSoFarInEachRun) {
    launch("Temporal SNR");
    constexpr size_t constantVoxel = 70;
    script.atVolume = [&](int volume) {
        session().functionalDocument->project.volumes[size_t(volume)][constantVoxel] = 700;
    };
    int compared = 0;
    ProbeListener probe(session().listeners, ListenerPlace::Dialogs);
    probe.onEndOfVolume = [&](int last) {
        const std::span<const float> map = session().functionalDocument->pluginMaps.map(0);
        for (size_t voxel = 0; voxel < map.size(); ++voxel) {
            std::vector<double> samples;
            for (int volume = 0; volume <= last; ++volume)
                samples.push_back(sample(voxel, volume));
            const double deviation = last > 0 ? std::sqrt(covariance(samples, samples)) : 0.0;
            const double expected = deviation > 0 ? meanOf(samples) / deviation : 0.0;
            ASSERT_NEAR(double(map[voxel]), expected, 1e-5 * expected) << voxel << " " << last;
            ++compared;
        }
    };
    // The second one is shorter, so that its numbers of volumes were there before.
    for (const int volumes : {11, 8}) {
        writeSession(volumes, 2);
        runAgain();
        EXPECT_EQ(session().functionalDocument->pluginMaps.map(0)[constantVoxel], 0.0f);
    }
    EXPECT_EQ(compared, (9 + 6) * 8 * 8 * 4);
    EXPECT_EQ(session().requests.pluginMaps.name(0), "Temporal SNR");
    EXPECT_EQ(session().requests.thresholds.Threshold, 20.0f);
    EXPECT_TRUE(session().requests.pluginMaps.shown);
}

TEST_F(PluginExamples, RoiSenderSendsTheMeansOfEachVolume) {
    const std::vector<VoxelRectangle> rectangles = {{1, 2, 6, 1, 4}, {3, 0, 2, 5, 8}};
    const Receiver receiver;
    launch("ROI Sender", receiver.port());
    writeSession(12, 2);
    runWithRegions(rectangles);
    for (int volume = 0; volume < 10; ++volume) {
        const QJsonObject message = receiver.next();
        EXPECT_EQ(message["volume"].toInt(), volume + 1);
        const bool faces = volume >= 3 && volume < 6, houses = volume >= 9;
        EXPECT_EQ(message["condition"].toInt(-1), faces ? 1 : houses ? 2 : 0) << volume;
        const QJsonArray means = message["rois"].toArray();
        ASSERT_EQ(means.size(), volume == 0 ? 0 : 2) << volume;
        for (qsizetype roi = 0; roi < means.size(); ++roi)
            EXPECT_NEAR(means[roi].toDouble(),
                        timeCourse(rectangles[size_t(roi)], 10)[size_t(volume)], 1e-3);
    }
    EXPECT_TRUE(receiver.next().isEmpty());
}

TEST_F(PluginExamples, SmoothnessFindsTheGaussianAndTheCorrelations) {
    launch("Smoothness");
    writeSession(14, 2,
                 {{"MatrixSizeX:", "32"},
                  {"MatrixSizeY:", "32"},
                  {"MosaicResolutionX:", "128"},
                  {"MosaicResolutionY:", "128"},
                  {"NrOfSlices:", "16"}});
    // A bright head that reaches through all slices, in the dark; all of it drifts.
    std::mt19937 random(1);
    script.atVolume = [&](int volume) {
        const std::vector<double> noise = smoothNoise(random);
        auto samples = session().functionalDocument->project.volumes[size_t(volume)];
        for (size_t i = 0; i < noise.size(); ++i) {
            const size_t x = i % 32, y = i / 32 % 32;
            const bool head = x > 3 && x < 29 && y > 2 && y < 27;
            const double drift = volume * (600.0 + 12.0 * double(x));
            samples[i] = int16_t(std::lround((head ? 15000.0 : 2000.0) + drift + noise[i]));
        }
    };
    const std::vector<VoxelRectangle> rectangles = {
        {4, 10, 14, 10, 14}, {4, 13, 17, 10, 14}, {4, 20, 24, 20, 24}};
    runWithRegions(rectangles);

    const QStringList lines = logged();
    ASSERT_EQ(lines.size(), 1 + 11 + 1 + 3) << lines.join('|').toStdString();
    const auto numbers = [&](int line) {
        std::vector<double> result;
        for (const QString& word : lines[line].section(':', -1).split(' ', Qt::SkipEmptyParts))
            result.push_back(word.toDouble());
        return result;
    };
    EXPECT_TRUE(lines[1].startsWith("Volume 2: ")) << lines[1].toStdString();
    for (size_t axis = 0; axis < 3; ++axis) {
        std::vector<double> estimates;
        for (int line = 1; line <= 11; ++line)
            estimates.push_back(numbers(line)[axis]);
        EXPECT_NEAR(meanOf(estimates), noiseFWHM[axis], 0.03 * noiseFWHM[axis]) << axis;
    }
    for (size_t a = 0; a < 3; ++a)
        for (size_t b = 0; b < 3; ++b) {
            const std::vector<double> one = timeCourse(rectangles[a], 12);
            const std::vector<double> other = timeCourse(rectangles[b], 12);
            const double expected =
                covariance(one, other) / std::sqrt(covariance(one, one) * covariance(other, other));
            EXPECT_NEAR(numbers(13 + int(a))[b], expected, 0.0051) << a << " " << b;
        }
}
