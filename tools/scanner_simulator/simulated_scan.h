// One simulated run: its volumes, its files and its ground truth.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "delivery.h"
#include "head_phantom.h"
#include "simulated_dynamics.h"

#include <vector>

/// Volumes count from 0 and include the skipped ones; samples are stored x fastest, then y, then
/// slices. A volume depends on the options only, so volumes can be generated repeatedly and in any
/// order. Options must be valid (problemOf).
class SimulatedScan {
public:
    explicit SimulatedScan(const SimulationOptions& options);

    [[nodiscard]] const SimulationOptions& options() const { return options_; }
    [[nodiscard]] const ScanGeometry& geometry() const { return geometry_; }
    /// Conditions in protocol order; 0 is the baseline.
    [[nodiscard]] const std::vector<SimulatedCondition>& conditions() const {
        return dynamics_.conditions();
    }

    /// Samples from 0 to 4095.
    [[nodiscard]] std::vector<uint16_t> volume(int volume) const;
    /// Names, below the watch folder, and bytes of the files of a volume, as the scanner writes
    /// them.
    [[nodiscard]] std::vector<ScannerFile> files(int volume) const;
    /// Writes them below a folder, each atomically; a file shared by all volumes grows by this
    /// volume. False when one can't be written.
    [[nodiscard]] bool writeVolume(int volume, const QString& folder) const;

    /// How the scanner names and writes its files.
    [[nodiscard]] const ScannerFormat& format() const { return *format_; }
    /// Folder that the scanner writes to: incoming/ in the session folder, or the series folder
    /// below it.
    [[nodiscard]] QString watchFolder() const;
    /// Settings, complete protocol and ground truth of the session, with their folders; the README
    /// of this tool lists the files. False when a folder or file can't be written.
    [[nodiscard]] bool writeSettings() const;
    [[nodiscard]] bool writeProtocol() const;
    [[nodiscard]] bool writeTruth() const;
    /// The growing protocol: its content before the run, and the lines added after a volume. A
    /// protocol that is complete before the run doesn't grow.
    [[nodiscard]] bool writeProtocolHeader() const;
    [[nodiscard]] bool appendProtocol(int volume) const;
    /// The same for a delivery.
    [[nodiscard]] GrowingProtocol growingProtocol() const;

    /// Where the head is while a volume is measured.
    [[nodiscard]] HeadPose pose(int volume) const { return dynamics_.pose(volume); }
    /// One byte for each voxel of the head at rest: 1 where its centre lies in the region, from 1:
    /// the condition that it responds to, or with mental tasks one of the six. The baseline, 0, has
    /// none.
    [[nodiscard]] std::vector<uint8_t> activeVoxels(int region) const;
    /// The same for the brain without its border, where voxels also hold other tissue.
    [[nodiscard]] std::vector<uint8_t> brainVoxels() const;
    /// For each voxel of the head at rest: 1 or -1 for the condition that a voxel of the fine
    /// pattern prefers, the first or the second; 0 elsewhere.
    [[nodiscard]] std::vector<int8_t> preferences() const;

private:
    /// The part that is constant while the head is at rest.
    struct RestingHead {
        std::vector<float> signal;
        std::vector<float> pulsation;
        std::vector<uint8_t> region;    ///< active region, from 1; 0 elsewhere
        std::vector<int8_t> preference; ///< empty without a fine pattern
    };
    void fillSlice(int volume, int slice, const RestingHead& head, class RandomNumbers& random,
                   uint16_t* samples) const;
    [[nodiscard]] int regionAt(const Point& point) const;
    [[nodiscard]] RestingHead headAt(const HeadPose& pose) const;

    SimulationOptions options_;
    ScanGeometry geometry_;
    HeadPhantom phantom_;
    SimulatedDynamics dynamics_;
    RestingHead atRest_;
    std::shared_ptr<const ScannerFormat> format_;
};
