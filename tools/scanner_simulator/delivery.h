// Delivers files into a watch folder as a scanner does, with faults on request.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"

#include <functional>
#include <map>
#include <optional>
#include <set>

/// Volumes count from 1 here, as users count them.
struct DeliveryOptions {
    bool atRepetitionTime = true; ///< false: as fast as files can be written
    double speed = 1.0;           ///< 2: twice as fast as measured
    int startDelay = 0;           ///< milliseconds before the measurement begins
    bool growing = false;         ///< files are written in place, in pieces with pauses
    bool outOfOrder = false;      ///< slices in reverse, or whole volumes swapped in pairs
    bool halfLines = false;       ///< lines of the protocol are written in halves with a pause
    std::map<int, int> late = {}; ///< delay in milliseconds by volume
    std::set<int> missing = {};   ///< volumes that are never delivered
    std::set<int> truncated = {}; ///< volumes whose files end early
};

/// A protocol that another computer appends to during the scan.
struct GrowingProtocol {
    QString path;
    /// The lines that are due when a volume, from 0, has been measured. Volumes that are late,
    /// missing or swapped don't delay them. Empty without such a protocol.
    std::function<QByteArray(int volume)> lines;
};

/// What to deliver: simulated volumes or those of a folder.
struct VolumeSource {
    int nrOfVolumes = 0;
    bool writesSlices = false;  ///< each slice is a file of its own
    bool writesOneFile = false; ///< all volumes are appended to one file
    int repetitionTime = 1000;  ///< milliseconds
    /// Files of a volume, from 0; nothing when they can't be read.
    std::function<std::optional<std::vector<ScannerFile>>(int volume)> files;
    GrowingProtocol protocol = {};
};

/// A clock that tests can replace.
class DeliveryClock {
public:
    virtual ~DeliveryClock() = default;
    /// Milliseconds since an arbitrary origin.
    [[nodiscard]] virtual int64_t milliseconds() const = 0;
    /// Waits until that moment, if it is not past; false when the user ends the program.
    [[nodiscard]] virtual bool waitUntil(int64_t milliseconds) = 0;
};

struct DeliveryStep {
    int volume;  ///< from 0
    int64_t due; ///< milliseconds after the start
    bool operator==(const DeliveryStep&) const = default;
};

/// Delivery times in chronological order. A volume is due when it has been measured. In one file
/// for all volumes a late one delays those after it, and missing or truncated ones leave no gap.
[[nodiscard]] std::vector<DeliveryStep> deliverySchedule(const DeliveryOptions& options,
                                                         const VolumeSource& source);

enum class DeliveryResult { Done, Interrupted, Failed };

struct DeliveryOutcome {
    DeliveryResult result = DeliveryResult::Done;
    QString problem = {}; ///< why it failed, as a sentence for the user
};

/// Delivers all volumes into an existing folder. `report` is called for each volume delivered.
[[nodiscard]] DeliveryOutcome deliver(const DeliveryOptions& options, const VolumeSource& source,
                                      const QString& folder, DeliveryClock& clock,
                                      const std::function<void(const QString&)>& report);
