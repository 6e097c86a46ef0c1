// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/multi_study_design.h"

bool addStudyAndDesignMatrix(MultiStudyList&, const QString&, const QString&) {
    return false;
}

QByteArray mdmText(const MultiStudyList&) {
    return {};
}

bool parseMDM(const QString&, MultiStudyList&) {
    return false;
}

bool writeMDMFile(const QString&, const MultiStudyList&) {
    return false;
}

bool readMDMFile(const QString&, MultiStudyList&) {
    return false;
}

std::vector<StudyCondition> unionOfConditions(const std::vector<RunOfStudy>&) {
    return {};
}

bool makeRunDesign(DesignMatrix&, const RunOfStudy&, const std::vector<StudyCondition>&) {
    return false;
}

bool createRunDesignMatrices(const std::vector<RunOfStudy>&, const QString&, MultiStudyList&) {
    return false;
}

bool assembleMultiStudyDesign(const MultiStudyList&, const std::vector<RgbColor>&, WholeRunDesign&,
                              VolumeSize&) {
    return false;
}

std::unique_ptr<SliceSource> openRunsOnDisk(const MultiStudyList&) {
    return nullptr;
}

std::vector<int> conditionsOfColumns(const WholeRunDesign&) {
    return {};
}
