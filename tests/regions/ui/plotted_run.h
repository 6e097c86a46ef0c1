// A session with a document made by hand, and regions whose curves are known.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/ui/time_courses_container.h"
#include "run/loop/session_fixture.h"

/// 60 volumes of 2000 ms, the first 40 of which are measured; two conditions and a baseline.
class PlottedRun : public testing::Test {
protected:
    PlottedRun() {
        session.functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
        document = session.functionalDocument.get();
        document->project.TR = 2000;
        for (const auto& [name, color, first] : {std::tuple("Rest", RgbColor{100, 100, 100}, 1),
                                                 {"Faces", {255, 80, 60}, 6},
                                                 {"Houses", {60, 160, 255}, 16}}) {
            ProtocolCondition condition;
            condition.name = name;
            condition.color = color;
            document->protocol.conditions.push_back(condition);
            const int index = document->protocol.nrOfConditions() - 1;
            for (int from = first; from <= 50; from += 20)
                EXPECT_TRUE(document->protocol.addInterval(index, from, from + 4));
        }
        DesignMatrix& design = document->design;
        design.PredictorNames = {"Faces", "Houses", "Constant"};
        design.PredictorColors = {{255, 80, 60}, {60, 160, 255}, {255, 255, 255}};
        design.NrOfConditionPredictors = 2;
        design.NrOfConfoundPredictors = 1;
        session.report.currentVolume = 39;
    }

    /// Its signal is 1000 * number, and 2 % more at the volumes from 6 to 11, 26 to 31.
    void addRegion() {
        RegionOfInterest region;
        const int number = document->regions.count() + 1;
        for (int x = 0; x < 30 + number; ++x)
            region.voxels.append(x, 5, 8);
        region.CurrentTimePoint = 39;
        for (int v = 0; v < 60; ++v)
            region.TimeCourseValues.push_back(float(number) *
                                                  (v % 20 >= 6 && v % 20 < 12 ? 1020.0f : 1000.0f) +
                                              float(v * 7 % 5));
        document->regions.add(std::move(region));
    }
    void fitModel(RegionOfInterest& region) {
        region.predictorsInFit = 3;
        region.ROIBetas = {1.5f, -0.5f, 1000.0f};
        region.BetaCovariance = {0.25, 0, 0, 0, 0.09, 0, 0, 0, 1};
        region.residualVariance = 100.0f;
    }
    void addRegions(int count) {
        for (int i = 0; i < count; ++i)
            addRegion();
        session.listeners.regionsChanged(*document);
    }
    void passVolume() { EXPECT_TRUE(session.listeners.atStep(VolumeStep::Plots, {*document, 39})); }

    ScriptedMessages messages;
    SimulatedPump pump;
    ProbeDisplay display;
    RunSession session{pump, display};
    QtCortivoDoc* document = nullptr;
    QWidget window;
    TimeCoursesContainer container{session, &window};
};
