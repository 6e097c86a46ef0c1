// Several runs in one model: their list (.mdm), the designs of the runs, the common design.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/stimulation_protocol.h"
#include "stats/design_matrix_rtc.h"
#include "stats/whole_run_glm.h"
#include "stats/whole_run_model.h"
#include "volume/fmr_project.h"

#include <memory>
#include <vector>

/// The list of runs, as the file (.mdm) states it.
struct MultiStudyList {
    ZTransformation transformation = ZTransformation::None;
    SeparatePredictors separation = SeparatePredictors::None;
    std::vector<GLMStudy> studies;

    bool operator==(const MultiStudyList&) const = default;
};

/// Appends a study. False, with nothing appended, after a message when one of the files doesn't
/// exist; a design without readable names is refused with its message too.
[[nodiscard]] bool addStudyAndDesignMatrix(MultiStudyList& list, const QString& studyFile,
                                           const QString& designFile);

/// The text of the file. The subjects stand behind the studies, where predictors are separate for
/// each subject. A double quote in a name becomes "'", since the format has no escape.
[[nodiscard]] QByteArray mdmText(const MultiStudyList& list);
/// False when the text is no such file, or ends too soon; `list` is then unchanged. Where
/// predictors are separate for each subject and no subjects are listed, each study is one of its
/// own.
[[nodiscard]] bool parseMDM(const QString& text, MultiStudyList& list);
/// Writes atomically; false after a message.
[[nodiscard]] bool writeMDMFile(const QString& fileName, const MultiStudyList& list);
/// False after a message. A relative name belongs to the folder of the file.
[[nodiscard]] bool readMDMFile(const QString& fileName, MultiStudyList& list);

/// What the design of one run of several is made from.
struct RunOfStudy {
    QString studyFile; ///< .fmr
    int subject = 1;
    int NrOfVolumes = 0;
    float TR = 0.0f; ///< milliseconds
    StimulationProtocol protocol;
};

/// A condition of several runs.
struct StudyCondition {
    QString name;
    RgbColor color;
};

/// Condition names over all runs in the order in which they first appear, each with its first
/// colour. Entry 0 is the baseline.
[[nodiscard]] std::vector<StudyCondition> unionOfConditions(const std::vector<RunOfStudy>& runs);

/// The design of one run: a column for each condition of the union but the first, its box-car
/// convolved with the single-gamma response; zeros for a condition that the run doesn't have. Any
/// number of columns. False when memory runs out, which ends the program after a message.
[[nodiscard]] bool makeRunDesign(RTCFile& design, const RunOfStudy& run,
                                 const std::vector<StudyCondition>& conditions);

/// Writes the design of each run as `stem` + "_run-%i.rtc", from 1, replaces the studies of `list`
/// by the pairs, and writes the list as `stem` + ".mdm". False after a message, with `list`
/// unchanged.
[[nodiscard]] bool createRunDesignMatrices(const std::vector<RunOfStudy>& runs, const QString& stem,
                                           MultiStudyList& list);

/// The headers of the listed projects. False after a message when none is listed, one is missing or
/// damaged, or one differs from the first in slices or matrix.
[[nodiscard]] bool readStudyHeaders(const MultiStudyList& list, std::vector<FMRHeader>& headers);

/// The common design of the listed runs and the matrix that they share. Reads the headers of the
/// projects and the designs. Columns: the conditions, once, or for each study or subject in turn,
/// then a constant for each study. Separate columns are named "Study %i: " (or "Subject %i: ") +
/// name, constants "Study signal level (confound)". `colors` are those of the conditions, by
/// predictor; missing ones are grey. Names are those of the first design that has some: version 1
/// has none. False, with `design` and `size` unchanged, after a message: a file is missing or
/// damaged, matrix, slices, number of predictors or of time points differ, memory runs out. Names
/// that differ only give a warning. CorrectSerialCorrelations stays as it is in `design`.
[[nodiscard]] bool assembleMultiStudyDesign(const MultiStudyList& list,
                                            const std::vector<RgbColor>& colors,
                                            WholeRunDesign& design, VolumeSize& size);

/// Appends drift terms for each study behind the constants: one is a linear trend, more are
/// cosines, as in the design of a run. Named "Study %i: " + name + " (confound)". False after a
/// message when memory runs out.
[[nodiscard]] bool addDriftTerms(WholeRunDesign& design, int termsOfStudy);

/// The data of the listed runs, read from their .stc files slice by slice: memory for one slice of
/// all runs. Null, after a message, when a run's data are missing, too short, or memory runs out.
[[nodiscard]] std::unique_ptr<SliceSource> openRunsOnDisk(const MultiStudyList& list);

/// conditionOfColumn of a model of several runs that was read from its file. Subjects are told
/// apart by the names of their columns, as assembleMultiStudyDesign() makes them.
[[nodiscard]] std::vector<int> conditionsOfColumns(const WholeRunDesign& design);
