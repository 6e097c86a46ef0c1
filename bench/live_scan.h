// A simulated scanner that writes in real time while a session waits for it, and when the session
// notices its files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "scanner_simulator/simulated_scan.h"

#include <QDir>
#include <chrono>
#include <thread>
#include <vector>

using BenchClock = std::chrono::steady_clock;

[[nodiscard]] inline double millisecondsBetween(BenchClock::time_point from,
                                                BenchClock::time_point to) {
    return std::chrono::duration<double, std::milli>(to - from).count();
}

/// A file counts as noticed when the reader starts to let it settle.
class NoticingPump : public QtEventPump {
public:
    std::vector<BenchClock::time_point> noticed;

    void pumpWait(int milliseconds) override {
        constexpr int settling = 30;
        if (milliseconds == settling)
            noticed.push_back(BenchClock::now());
        QtEventPump::pumpWait(milliseconds);
    }
};

/// Writes a volume at each interval, as the scanner does, until it is destroyed.
class ScannerThread {
public:
    ScannerThread(const SimulatedScan& scan, int milliseconds)
        : thread_([&scan, milliseconds](const std::stop_token& stop) {
              for (int volume = 0; volume < scan.options().nrOfVolumes; ++volume) {
                  if (stop.stop_requested() || !scan.writeVolume(volume, scan.watchFolder()))
                      return;
                  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
              }
          }) {}

private:
    std::jthread thread_;
};

/// The settings, the protocol and the empty watch folder of a scan of mosaics.
[[nodiscard]] inline bool prepareScan(const SimulatedScan& scan) {
    return scan.writeSettings() && scan.writeProtocol() && QDir().mkpath(scan.watchFolder());
}

[[nodiscard]] inline SimulationOptions scanOptions(const QString& folder, int columns, int slices,
                                                   int volumes) {
    SimulationOptions options;
    options.folder = folder;
    options.sizeX = options.sizeY = columns;
    options.nrOfSlices = slices;
    options.nrOfVolumes = volumes;
    return options;
}
