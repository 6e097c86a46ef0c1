// A project of several runs (.mvco): its list, and the analysis of its runs together.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"
#include "stats/multi_study_design.h"

#include <QStringList>

/// The runs that belong to the current settings file.
struct MultiRunProject {
    bool multiRunProject = false; ///< the settings file has "MergeType:" 1
    QStringList multiRunFiles;    ///< settings files of the runs, as they are listed
    int nrOfMultiRunFiles = 0;    ///< 1 after a run that was measured or reloaded
    int selectedMultiRun = 0;     ///< chosen in the menu
    QStringList mvcoFileNames;    ///< project files in settingsFolder, when the menu was opened
    QString multiRunProjectPath;  ///< of the common results, without extension
    QString settingsFolder;       ///< of the current settings file, with "/" at the end
};

/// The project that the settings describe, or the single run, under the base name of its file.
[[nodiscard]] MultiRunProject multiRunProjectOf(const RunSettings& settings);

/// The .fmr file of a listed run, as its settings file states it. Empty when that can't be read;
/// a message has then been shown only of a missing file.
[[nodiscard]] QString projectPathOf(const MultiRunProject& project, int index);

/// What the header of a listed run states, with `path` as projectPathOf() gives it, and where the
/// protocol of the run is. False, after a message, when the header is missing or damaged.
[[nodiscard]] bool readRunHeader(RunOfStudy& study, const MultiRunProject& project, int index,
                                 const QString& path);
/// Reads the protocol from there. False after a message: `missingText` where there is no file.
[[nodiscard]] bool readRunProtocol(RunOfStudy& study, const QString& missingText);

/// What the plots need of an analysis that is done.
struct MultiRunAnalysis {
    std::vector<StudyCondition> conditions; ///< of all runs; entry 0 is the baseline
};

enum class MultiRunEnd { Done, Cancelled, Failed };

/// Fits, or reads, the model of all listed runs into the document, whose project becomes the header
/// of the first one, without data; then computes contrast maps and clusters. Writes the designs of
/// the runs, their list (.mdm) and the model (.glm) as results of the project. An existing model
/// file is read and never computed anew; the operator is told when it is that of other runs or
/// options. Without one, nothing is written before the data of all runs have been found. Failed
/// after a message; the document is then incomplete.
[[nodiscard]] MultiRunEnd analyseMultiRun(const RunParts& run, const MultiRunProject& project,
                                          MultiRunAnalysis& analysis);
