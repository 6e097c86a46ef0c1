// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/fmr_project.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "volume/fmr_file.h"
#include "volume/stc_file.h"

namespace {

bool canBeOpened(const QString& path) {
    QFile file(path);
    return openPlainFile(file);
}

/// A project that was moved names its anatomical file in the old folder: the current folder and
/// that of the project are then tried.
void findAMRFile(FMRProject& project) {
    if (project.LoadAMRFile.isEmpty() || canBeOpened(project.LoadAMRFile))
        return;
    const QString name = paths::fileName(paths::withForwardSlashes(project.LoadAMRFile));
    for (const QString& path : {name, paths::join(project.targetFolder, name)}) {
        if (!name.isEmpty() && canBeOpened(path)) {
            project.LoadAMRFile = path;
            return;
        }
    }
    showWarning(QString("Error loading .FMR project:\n -> Can not find referenced file  > %1 <")
                    .arg(project.LoadAMRFile));
    project.LoadAMRFile.clear();
    project.ShowAMRFile = 0;
}

bool readHeader(FMRProject& project, const QString& fileName) {
    FMRHeader header;
    if (!readFMRFile(fileName, FMRScope::Project, header))
        return false;
    // The names of data files may still have the "-", so stc_file.h tries both.
    if (header.Prefix.endsWith('-'))
        header.Prefix.chop(1);
    static_cast<FMRHeader&>(project) = header;
    project.projectPath = fileName;
    project.targetFolder = paths::folderWithSlash(fileName);
    project.firstVolume.release();
    project.volumes.clear();
    return true;
}

} // namespace

bool loadFMRProjectHeader(FMRProject& project, const QString& fileName) {
    if (!readHeader(project, fileName))
        return false;
    findAMRFile(project);
    return true;
}

bool loadFMRProject(FMRProject& project, const QString& fileName, LoadData loadData,
                    EventPump* pump) {
    if (!readHeader(project, fileName) || (loadData == LoadData::Yes && !checkSTCFiles(project)))
        return false;
    if (!project.allocateVolumes(pump)) {
        showCritical("ERROR: Insufficient memory for loading the functional project!");
        return false;
    }
    if (loadData == LoadData::Yes && !readSTCData(project, pump))
        return false;
    findAMRFile(project);
    return true;
}
