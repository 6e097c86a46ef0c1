// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_target.h"

#include "base/messages.h"
#include "volume/fmr_file.h"
#include "volume/stc_file.h"

#include <QFile>
#include <QFileInfo>

namespace {

bool canBeOpened(const QString& path) {
    // Opening a pipe would wait for its other end.
    return QFileInfo(path).isFile() && QFile(path).open(QIODevice::ReadOnly);
}

} // namespace

bool loadIntraSessionTarget(const QString& path, const FMRProject& project,
                            MotionCorrection& motion) {
    if (!canBeOpened(path)) {
        showWarning(QString("Can not find target FMR \"%1\" for across-run, same-session motion "
                            "correction")
                        .arg(path));
        return false;
    }
    FMRHeader target;
    if (!readFMRHeader(path, target))
        return false;
    if (target.size() != project.size()) {
        showWarning("The provided across-run, same-session target FMR file does not match current "
                    "(source) FMR file!");
        return false;
    }
    return readSTCVolume(0, path, target, motion.motionTarget) && target.size() == project.size();
}
