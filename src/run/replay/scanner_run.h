// A run that is measured now, with the texts of the files that it is prepared from.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_source.h"

#include <QByteArray>

/// A file as it was when the run was prepared; empty for none.
struct InputFile {
    QString path;
    QByteArray content;
};

struct RunInputs {
    InputFile settings;  ///< .vco
    InputFile protocol;  ///< .prt; of one that arrives during the run, nothing
    InputFile contrasts; ///< .ctr
};

class ScannerRun : public RunSource {
public:
    using ReaderMaker = std::function<std::unique_ptr<VolumeReader>(const IntakeContext&)>;

    explicit ScannerRun(ReaderMaker makeReader) : makeReader_(std::move(makeReader)) {}

    [[nodiscard]] bool readSettings(RunSettings& settings,
                                    const std::function<void()>& stopTimer) override;
    [[nodiscard]] std::unique_ptr<VolumeReader> makeReader(const IntakeContext& context) override {
        return makeReader_(context);
    }
    [[nodiscard]] bool isMeasured() const override { return true; }
    /// As they were when the settings were read: the operator may edit the next run's files while
    /// the first volume is waited for.
    [[nodiscard]] const RunInputs& inputs() const { return inputs_; }

private:
    ReaderMaker makeReader_;
    RunInputs inputs_;
};
