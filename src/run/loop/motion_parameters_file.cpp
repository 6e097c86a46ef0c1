// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/motion_parameters_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/text_reading.h"
#include "stats/design_matrix_rtc.h"

namespace {

QStringList parameterNames() {
    return {"X translation [mm]", "Y translation [mm]", "Z translation [mm]",
            "X rotation [deg]",   "Y rotation [deg]",   "Z rotation [deg]"};
}

/// What is wrong with a file; empty when its values can be taken.
QString problemOf(RTCParseResult result, const RTCFile& file) {
    if (file.version != 2)
        return "ERROR: RTC file version not supported !";
    if (file.type != "DesignMatrix")
        return "ERROR: RTC does not contain a design matrix definition !";
    // Names and columns of an incomplete file may be missing.
    if (result == RTCParseResult::Ok && file.columns.size() != nrOfMotionParameters)
        return "ERROR: RTC must contain 6 predictors (3 translations and 3 rotations).";
    if (result != RTCParseResult::Ok)
        return "ERROR: The .rtc file with motion correction parameters is not complete !";
    return {};
}

bool readMotionParameters(MotionCorrection& motion, const FMRProject& project) {
    QString text;
    if (!readTextFile(motionParametersFileName(project), text)) {
        showWarning("ERROR: Can not open .rtc file for loading motion correction parameters !");
        return false;
    }
    RTCFile file;
    const RTCParseResult result = parseRTC(text, file);
    const QString problem = problemOf(result, file);
    if (!problem.isEmpty()) {
        showWarning(problem);
        return false;
    }
    if (file.nrOfDataPoints != project.NrOfVolumes)
        return false;
    if (!motion.allocateMotionParameters(project.NrOfVolumes)) {
        showWarning("ERROR: Insufficient memory!");
        return false;
    }
    for (size_t i = 0; i < nrOfMotionParameters; ++i)
        std::ranges::copy(file.columns[i], motion.motionParameters[i].data());
    return true;
}

} // namespace

QString motionParametersFileName(const FMRProject& project) {
    const QString path = project.projectPath;
    return paths::fileName(path).contains('.') ? paths::withoutExtension(path) + "_3DMC.rtc"
                                               : QString("3DMC.rtc");
}

bool saveMotionParameters(const MotionCorrection& motion, const FMRProject& project,
                          int nrOfVolumes) {
    RTCFile file;
    file.names = parameterNames();
    file.nrOfDataPoints = std::min(nrOfVolumes, int(motion.motionParameters[0].size()));
    for (const ZeroedBuffer<float>& values : motion.motionParameters)
        file.columns.emplace_back(values.data(), values.data() + values.size());
    if (motion.motionParameters[0].empty() ||
        writeFileAtomically(motionParametersFileName(project), rtcText(file, RTCNumbers::Plain)))
        return true;
    showWarning("ERROR: Can not open .rtc file for saving motion correction parameters !");
    return false;
}

bool loadMotionParameters(MotionCorrection& motion, const FMRProject& project,
                          bool& motionCorrection) {
    if (readMotionParameters(motion, project))
        return true;
    motionCorrection = false;
    return false;
}
