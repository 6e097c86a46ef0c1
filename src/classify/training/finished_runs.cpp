// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/finished_runs.h"

#include "base/paths.h"
#include "base/plain_file.h"
#include "run/loop/finished_run.h"
#include "run/loop/run_preparation.h"
#include "run/protocol/prt_file.h"
#include "volume/first_volume_file.h"
#include "volume/fmr_file.h"
#include "volume/stc_slice_reader.h"

namespace {

/// As it was measured; where that is gone, as it was analysed.
bool fillFirstVolume(FMRProject& project) {
    if (fileExists(firstVolumeFileName(project)) && readFirstVolume(project))
        return true;
    if (project.volumes.empty() || !project.firstVolume.allocate(project.volumeSamples()))
        return false;
    std::copy_n(project.volumes[0].data(), project.volumeSamples(), project.firstVolume.data());
    return true;
}

} // namespace

QString protocolPathOfRun(const FMRHeader& header, const QString& path) {
    const QString found =
        protocolOfSavedRun(header, paths::folderWithSlash(path), header.ProtocolFiles.value(0));
    return fileExists(found) ? found : QString();
}

bool readConditionsOfRun(const QString& path, StimulationProtocol& protocol) {
    FMRHeader header;
    if (!readFMRHeader(path, header))
        return false;
    StimulationProtocol read;
    read.protocolPath = protocolPathOfRun(header, path);
    if (!read.protocolPath.isEmpty() && !readPRTFile(read, ResponseTable::Read))
        return false;
    protocol = std::move(read);
    return true;
}

std::unique_ptr<QtCortivoDoc> loadFinishedRun(const QString& path) {
    if (!STCSliceReader::open(path))
        return nullptr;
    auto document = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
    FMRProject& project = document->project;
    if (!loadFMRProject(project, path, LoadData::Yes))
        return nullptr;
    document->mosaic.MosaicColumns = std::max(project.LayoutNColumns, 1);
    document->mosaic.MosaicRows = std::max(project.LayoutNRows, 1);
    if (fillFirstVolume(project))
        showFirstVolume(*document);
    return document;
}
