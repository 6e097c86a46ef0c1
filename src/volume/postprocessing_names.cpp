// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/postprocessing_names.h"

#include "base/file_writing.h"
#include "base/paths.h"
#include "volume/fmr_file.h"

#include <QFileInfo>

namespace {

QString sliceScanTimeMark(const SliceScanTimeOptions& options) {
    QString mark = options.sincInterpolation          ? "_SCS"
                   : options.cubicSplineInterpolation ? "_SCC"
                                                      : "_SCL";
    if (options.measuredTimes)
        return mark + 'M';
    if (options.ascendingSliceOrder)
        mark += 'A';
    else if (options.descendingSliceOrder)
        mark += 'D';
    // Of the patterns the one that timePositionOfSlice() takes.
    if (options.interleavedSliceOrder)
        mark += 'I';
    else if (options.interleaved2SliceOrder)
        mark += "I2";
    return mark;
}

QString motionMark(const RunMotionOptions& options) {
    QString mark = "_3DMC";
    if (options.method == MotionMethod::LeastSquares)
        mark += "LS";
    if (options.method == MotionMethod::LeastSquaresTrilinear)
        mark += "LST";
    return options.targetVolume == 0 ? mark : mark + formatted("V%i", options.targetVolume + 1);
}

QString spatialMark(const SpatialSmoothingOptions& options) {
    const QString mark =
        QString(options.inSpaceDomain ? "_SD" : "_FD") + (options.in2D ? "2D" : "3D");
    return mark + formatted(options.inMillimetres ? "SS%4.2fmm" : "SS%4.2fpx", options.fwhm);
}

QString temporalMark(const TemporalOptions& options) {
    QString mark;
    if (options.linearTrendRemoval && !options.highPass)
        mark += "_LTR";
    if (options.highPass)
        mark += formatted("_THPGLMF%ic", options.nrOfHighPassCycles());
    // The field is four characters wide, so a short width has a blank before it.
    if (options.gaussian)
        mark += "_TD" + formatted(options.gaussianInSeconds ? "TS%4.1fs" : "TS%4.1fdp",
                                  options.gaussianWidth);
    return mark;
}

} // namespace

PostprocessedNames makePostprocessedNames(const QString& fmrName, const QString& prefix,
                                          const PostprocessingOptions& options) {
    if (!options.sliceScanTime.checked && !options.motion.checked && !options.spatial.checked &&
        !options.temporal.checked)
        return {fmrName, prefixOfFiles(prefix)};
    QString marks;
    if (options.sliceScanTime.checked)
        marks += sliceScanTimeMark(options.sliceScanTime);
    if (options.motion.checked)
        marks += motionMark(options.motion);
    if (options.spatial.checked)
        marks += spatialMark(options.spatial);
    if (options.temporal.checked)
        marks += temporalMark(options.temporal);
    const QString extension = ".fmr";
    const bool extended = fmrName.endsWith(extension, Qt::CaseInsensitive);
    const QString name = extended ? fmrName.chopped(extension.size()) : fmrName;
    return {name + marks + extension, prefixOfFiles(prefix) + marks};
}

PostprocessedFiles postprocessedFiles(const QString& projectPath, const QString& prefix,
                                      const QString& targetFolder,
                                      const PostprocessingOptions& options) {
    const PostprocessedNames names =
        makePostprocessedNames(paths::fileName(projectPath), prefix, options);
    PostprocessedFiles files{names.fmrName, names.prefix + ".stc"};
    for (const QString& name : {files.fmrName, files.stcName})
        files.replaceOthers |= QFileInfo::exists(paths::join(targetFolder, name));
    return files;
}
