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

int keyedInteger(TokenStream& stream) {
    stream.word();
    return stream.integer();
}

/// What an operator is told of a file whose head is no good, in the order in which it is read. The
/// keys are not looked at.
QString problemOfHead(TokenStream& stream) {
    if (keyedInteger(stream) != 2)
        return "ERROR: RTC file version not supported !";
    stream.word();
    if (stream.word() != "DesignMatrix")
        return "ERROR: RTC does not contain a design matrix definition !";
    if (keyedInteger(stream) != int(nrOfMotionParameters))
        return "ERROR: RTC must contain 6 predictors (3 translations and 3 rotations).";
    return {};
}

/// False when names or values are missing.
bool readValues(TokenStream& stream, MotionCorrection& motion) {
    QString name;
    for (size_t i = 0; i < nrOfMotionParameters; ++i)
        if (!readDelimitedString('"', name, stream))
            return false;
    for (size_t v = 0; v < motion.motionParameters[0].size(); ++v)
        for (ZeroedBuffer<float>& values : motion.motionParameters)
            values[v] = float(stream.real());
    return !stream.failed();
}

/// False, with what to tell; that is empty for a file of another number of volumes.
bool readMotionParameters(MotionCorrection& motion, const FMRProject& project, QString& problem) {
    QString text;
    if (!readTextFile(motionParametersFileName(project), text)) {
        problem = "ERROR: Can not open .rtc file for loading motion correction parameters !";
        return false;
    }
    TokenStream stream(text);
    problem = problemOfHead(stream);
    if (!problem.isEmpty() || keyedInteger(stream) != project.NrOfVolumes)
        return false;
    if (!motion.allocateMotionParameters(project.NrOfVolumes)) {
        problem = "ERROR: Insufficient memory!";
        return false;
    }
    if (!readValues(stream, motion))
        problem = "ERROR: The .rtc file with motion correction parameters is not complete !";
    return problem.isEmpty();
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
    QString problem;
    motionCorrection = readMotionParameters(motion, project, problem);
    if (!motionCorrection)
        motion.releaseMotionParameters();
    if (!problem.isEmpty())
        showWarning(problem);
    return motionCorrection;
}
