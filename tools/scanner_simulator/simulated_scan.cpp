// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulated_scan.h"

#include "base/file_writing.h"
#include "base/paths.h"
#include "mental_tasks.h"
#include "protocol_files.h"
#include "random_numbers.h"
#include "region_file.h"
#include "session_files.h"
#include "watch_folder.h"

#include <QDir>
#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Samples have 12 bits, like those of a scanner's converters. So they can't resemble the tag that
/// precedes the samples of an image file.
constexpr float largestSample = 4095.0f;

} // namespace

SimulatedScan::SimulatedScan(const SimulationOptions& options)
    : options_(options), geometry_(options), phantom_(geometry_), dynamics_(options),
      atRest_(headAt({})), format_(scannerFormat(options)) {}

SimulatedScan::RestingHead SimulatedScan::headAt(const HeadPose& pose) const {
    const PoseInverse toHead(pose);
    RestingHead head;
    head.signal.reserve(geometry_.voxels());
    head.pulsation.reserve(geometry_.voxels());
    head.region.reserve(geometry_.voxels());
    for (int slice = 0; slice < geometry_.nrOfSlices; ++slice)
        for (int y = 0; y < geometry_.sizeY; ++y)
            for (int x = 0; x < geometry_.sizeX; ++x) {
                const Point point = toHead(geometry_.voxelCentre(x, y, slice));
                const double signal = phantom_.signal(point);
                const bool inHead = signal > 0.0;
                head.signal.push_back(float(signal));
                head.pulsation.push_back(inHead ? float(HeadPhantom::pulsationWeight(point))
                                                : 0.0f);
                head.region.push_back(inHead ? uint8_t(regionAt(point)) : 0);
                if (options_.patternStrength > 0.0)
                    head.preference.push_back(int8_t(phantom_.preference(point)));
            }
    return head;
}

int SimulatedScan::regionAt(const Point& point) const {
    return options_.hasTasks() ? phantom_.taskRegion(point) : phantom_.activeCondition(point);
}

void SimulatedScan::fillSlice(int volume, int slice, const RestingHead& head, RandomNumbers& random,
                              uint16_t* samples) const {
    // Slices are measured one after the other, from the lowest to the highest.
    const double seconds =
        (volume + double(slice) / geometry_.nrOfSlices) * options_.repetitionTime / 1000.0;
    const float steady = float(dynamics_.saturation(volume) * (1.0 + dynamics_.drift(seconds)));
    const float pulsation = float(dynamics_.pulsation(seconds));
    std::array<float, HeadPhantom::nrOfTaskRegions + 1> response{}; // by region from 1
    for (size_t region = 0; region < dynamics_.regions().size(); ++region)
        response[region + 1] = float(options_.amplitude * dynamics_.response(region, seconds));
    // Voxels of the fine pattern respond to both conditions, on the mean alike.
    const float bothConditions = response[1] + response[2];
    const float difference = float(options_.patternStrength * (dynamics_.response(0, seconds) -
                                                               dynamics_.response(1, seconds)));
    const float noise = float(options_.noise);
    const size_t first = size_t(slice) * geometry_.sliceVoxels();
    for (size_t i = 0; i < geometry_.sliceVoxels(); ++i) {
        const size_t voxel = first + i;
        const int preference = head.preference.empty() ? 0 : head.preference[voxel];
        const float activity = preference == 0 ? response[head.region[voxel]]
                                               : bothConditions + float(preference) * difference;
        const float factor = steady + activity + pulsation * head.pulsation[voxel];
        // Magnitude images have no sign: noise in the air around the head becomes positive.
        const float value = std::fabs(head.signal[voxel] * factor + noise * random.gaussian());
        samples[voxel] = uint16_t(std::min(value, largestSample) + 0.5f);
    }
}

std::vector<uint16_t> SimulatedScan::volume(int volume) const {
    const HeadPose pose = dynamics_.pose(volume);
    const RestingHead moved = pose.isAtRest() ? RestingHead{} : headAt(pose);
    const RestingHead& head = pose.isAtRest() ? atRest_ : moved;
    // Seeds of neighbouring volumes and runs are mixed, so that their noise is independent.
    RandomNumbers seeds(options_.seed);
    RandomNumbers random(
        seeds.bits() ^
        RandomNumbers(uint64_t(options_.run) << 32 | uint64_t(uint32_t(volume))).bits());
    std::vector<uint16_t> samples(geometry_.voxels());
    for (int slice = 0; slice < geometry_.nrOfSlices; ++slice)
        fillSlice(volume, slice, head, random, samples.data());
    return samples;
}

std::vector<ScannerFile> SimulatedScan::files(int volume) const {
    return format_->files(volume, this->volume(volume));
}

bool SimulatedScan::writeVolume(int volume, const QString& folder) const {
    for (const ScannerFile& file : files(volume))
        if (!writeScannerFile(folder, file))
            return false;
    return true;
}

QString SimulatedScan::watchFolder() const {
    return ::watchFolder(options_);
}

bool SimulatedScan::writeSettings() const {
    return writeSettingsFile(runDescription(options_, geometry_));
}

bool SimulatedScan::writeProtocol() const {
    bool written = writeProtocolHeader();
    for (int volume = 0; written && volume < options_.nrOfVolumes; ++volume)
        written = appendProtocol(volume);
    return written;
}

bool SimulatedScan::writeProtocolHeader() const {
    return ::writeProtocolHeader({options_, conditions()});
}

bool SimulatedScan::appendProtocol(int volume) const {
    const GrowingProtocol protocol = growingProtocol();
    return !protocol.lines || appendToFile(protocol.path, protocol.lines(volume));
}

GrowingProtocol SimulatedScan::growingProtocol() const {
    if (options_.protocol == ProtocolKind::Prt)
        return {};
    return {paths::join(options_.folder, protocolFileName(options_)), [this](int volume) {
                return protocolLines({options_, conditions()}, volume);
            }};
}

bool SimulatedScan::writeTruth() const {
    const QString folder =
        paths::join(options_.folder, QString("truth/%1-%2/").arg(options_.name).arg(options_.run));
    std::vector<HeadPose> poses;
    poses.reserve(size_t(options_.nrOfVolumes));
    for (int volume = 0; volume < options_.nrOfVolumes; ++volume)
        poses.push_back(pose(volume));
    std::vector<std::pair<const char*, QByteArray>> files = {
        {"motion.txt", motionText(poses)},
        {"active.txt", activeText(geometry_, dynamics_.regions(), atRest_.region)},
        {"../README.txt", truthReadme()}};
    if (options_.patternStrength > 0.0)
        files.emplace_back("code.txt", preferenceText(geometry_, conditions(), preferences()));
    if (!options_.spelledText.isEmpty())
        files.emplace_back("spelling.txt", spellingText(options_));
    if (options_.hasTasks())
        files.emplace_back("regions.roi",
                           regionFileText(geometry_, atRest_.region, HeadPhantom::nrOfTaskRegions));
    return QDir().mkpath(folder) && std::ranges::all_of(files, [&](const auto& file) {
               return writeFileAtomically(folder + file.first, file.second);
           });
}

std::vector<uint8_t> SimulatedScan::activeVoxels(int region) const {
    std::vector<uint8_t> map(geometry_.voxels(), 0);
    if (region > 0)
        for (size_t voxel = 0; voxel < map.size(); ++voxel)
            map[voxel] = atRest_.region[voxel] == region ? 1 : 0;
    return map;
}

std::vector<int8_t> SimulatedScan::preferences() const {
    return atRest_.preference.empty() ? std::vector<int8_t>(geometry_.voxels(), 0)
                                      : atRest_.preference;
}

std::vector<uint8_t> SimulatedScan::brainVoxels() const {
    std::vector<uint8_t> map;
    map.reserve(geometry_.voxels());
    for (int slice = 0; slice < geometry_.nrOfSlices; ++slice)
        for (int y = 0; y < geometry_.sizeY; ++y)
            for (int x = 0; x < geometry_.sizeX; ++x)
                map.push_back(phantom_.isBrain(geometry_.voxelCentre(x, y, slice)) ? 1 : 0);
    return map;
}
