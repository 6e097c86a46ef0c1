// A simulated scanner that writes in real time while the program waits for its files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_simulator/simulated_scan.h"

#include <QDir>
#include <atomic>
#include <chrono>
#include <fstream>
#include <random>
#include <thread>
#include <vector>

using BenchClock = std::chrono::steady_clock;

[[nodiscard]] inline double millisecondsBetween(BenchClock::time_point from,
                                                BenchClock::time_point to) {
    return std::chrono::duration<double, std::milli>(to - from).count();
}

enum class WayOfWriting {
    Renamed, ///< whole files, which get their name at last
    InPieces ///< created under their name, or opened again where one file grows, written in four
             ///< pieces, closed
};

/// Pauses between volumes, in milliseconds: evenly spread, so that files come at any moment of a
/// poll.
struct ScanPace {
    int shortest = 0;
    int longest = 0;
    int betweenPieces = 0;
};

/// Writes all volumes, as the scanner does, until it is destroyed.
class ScannerThread {
public:
    ScannerThread(const SimulatedScan& scan, ScanPace pace,
                  WayOfWriting way = WayOfWriting::Renamed)
        : scan_(scan), pace_(pace), way_(way), closed_(size_t(scan.options().nrOfVolumes)),
          thread_([this](const std::stop_token& stop) { writeAll(stop); }) {}

    /// Just before the last file of a volume, counted with the skipped ones, was closed, or got its
    /// name. To be asked for a volume that has arrived.
    [[nodiscard]] BenchClock::time_point closed(int volume) const {
        return closed_[size_t(volume)].load();
    }

private:
    using Milliseconds = std::chrono::milliseconds;

    void writeAll(const std::stop_token& stop) {
        std::mt19937 random(1);
        std::uniform_int_distribution<int> pause(pace_.shortest, pace_.longest);
        for (int volume = 0; volume < scan_.options().nrOfVolumes; ++volume) {
            const auto due = BenchClock::now() + Milliseconds(pause(random));
            // A scanner has computers of its own: making the next volume must not take a core from
            // the program that reads the last one.
            constexpr Milliseconds readingTakes{80};
            std::this_thread::sleep_for(std::min(Milliseconds(pace_.shortest), readingTakes));
            const std::vector<ScannerFile> files = scan_.files(volume);
            std::this_thread::sleep_until(due);
            for (const ScannerFile& file : files) {
                if (stop.stop_requested())
                    return;
                write(file, closed_[size_t(volume)]);
            }
        }
    }

    void write(const ScannerFile& file, std::atomic<BenchClock::time_point>& closed) const {
        const std::string path = (scan_.watchFolder() + '/' + file.name).toStdString();
        const bool renamed = way_ == WayOfWriting::Renamed && !file.append;
        const std::string first = renamed ? path + ".part" : path;
        std::ofstream stream(first,
                             std::ios::binary | (file.append ? std::ios::app : std::ios::out));
        const auto piece = std::streamsize(renamed ? file.bytes.size() : file.bytes.size() / 4 + 1);
        for (std::streamsize from = 0; from < file.bytes.size(); from += piece) {
            if (from > 0)
                std::this_thread::sleep_for(Milliseconds(pace_.betweenPieces));
            stream.write(file.bytes.data() + from,
                         std::min(piece, std::streamsize(file.bytes.size()) - from));
            stream.flush();
        }
        closed = BenchClock::now();
        stream.close();
        if (!renamed)
            return;
        closed = BenchClock::now();
        (void)std::rename(first.c_str(), path.c_str());
    }

    const SimulatedScan& scan_;
    const ScanPace pace_;
    const WayOfWriting way_;
    std::vector<std::atomic<BenchClock::time_point>> closed_;
    std::jthread thread_;
};

/// The settings, the protocol and the empty watch folder of a scan.
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
