// Finished runs on disk, whose regions respond to one condition each, and the work of training.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/training/classifier_training.h"
#include "run/loop/session_fixture.h"
#include "volume/fmr_file.h"
#include "volume/stc_file.h"

inline constexpr VolumeSize trainingSize{8, 8, 3};
inline constexpr int trainingVolumes = 60;
/// Of "Faces", "Houses" and "Tools"; each trial has two volumes. The last of Tools ends its window
/// behind the run.
inline const std::vector<std::vector<int>> trainingOnsets = {
    {5, 25, 45}, {15, 35, 51}, {9, 31, 57}};

class TrainingFixture : public SessionFixture, public TrainingDisplay {
protected:
    void log(const QString& text) override { logged += text + '\n'; }
    void refreshControls() override { ++refreshed; }
    void mapsLeaving() override { hooks << "leaving"; }
    void showMaps() override { hooks << "maps"; }

    /// Voxel i of the region, from 0; two of them respond to each condition.
    [[nodiscard]] static VoxelList regionVoxels() {
        VoxelList voxels;
        for (int i = 0; i < 6; ++i)
            voxels.append(6 - i, 2 + i % 2, 1 + i / 5);
        return voxels;
    }
    [[nodiscard]] static QString trainingProtocol() {
        return defaultProtocol().section("NrOfConditions:", 0, 0) +
               "NrOfConditions: 4\nFixation\n1\n1 3\nColor: 1 1 1\n"
               "Faces\n3\n5 6\n25 26\n45 46\nColor: 1 1 1\n"
               "Houses\n3\n15 16\n35 36\n51 52\nColor: 1 1 1\n"
               "Tools\n3\n9 10\n31 32\n57 58\nColor: 1 1 1\n";
    }
    /// Writes project, data and protocol; gives the path of the project.
    QString writeRun(const QString& name, const QString& protocol = trainingProtocol()) {
        FMRProject project;
        project.ResolutionX = project.ResolutionY = 8;
        project.NrOfSlices = 3;
        project.NrOfVolumes = trainingVolumes;
        project.Prefix = name;
        project.targetFolder = folder_.path() + "/";
        project.projectPath = path(name + ".fmr");
        project.ProtocolFiles = QStringList{name + ".prt"};
        EXPECT_TRUE(project.allocateVolumes());
        for (int volume = 0; volume < trainingVolumes; ++volume)
            for (size_t i = 0; i < project.volumeSamples(); ++i)
                project.volumes[size_t(volume)][i] =
                    int16_t(1000 + scriptedSample(i + name.size(), volume) % 5);
        addResponses(project);
        EXPECT_TRUE(writeSTCData(project, trainingVolumes, nullptr, nullptr, 0, 100));
        EXPECT_TRUE(writeFMRHeader(project, project.projectPath, trainingVolumes));
        put(name + ".prt", protocol.toUtf8());
        return project.projectPath;
    }
    /// The design's first column, times 100, from two volumes before each onset on.
    static void addResponses(FMRProject& project) {
        const TrialDesign design = trialDesign(TrialOptions{}, 1, project.TR);
        const VoxelList voxels = regionVoxels();
        for (size_t i = 0; i < voxels.size(); ++i)
            for (const int onset : trainingOnsets[i / 2])
                for (int point = 0; point < design.nrOfPoints; ++point)
                    if (const int volume = onset - 2 + point; volume < trainingVolumes)
                        project.volumes[size_t(volume)][voxels.offset(i, trainingSize)] +=
                            int16_t(std::lround(100.0 * design.X[size_t(point * 2)]));
    }
    /// A run of this size in memory, with the region.
    void loadRegion(const VolumeSize& size = trainingSize) {
        session.functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
        FMRProject& project = session.functionalDocument->project;
        project.ResolutionX = size.x;
        project.ResolutionY = size.y;
        project.NrOfSlices = size.slices;
        session.functionalDocument->regions.add({}).voxels = regionVoxels();
    }
    [[nodiscard]] QStringList filesNamed(const QString& pattern) const {
        return QDir(folder_.path()).entryList({pattern}, QDir::Files, QDir::Name);
    }

    QString logged;
    QStringList hooks;
    int refreshed = 0;
    ClassifierTraining training{session, *this};
};
