// Responses of the subject in their plot.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/ui/response_plot_dialog.h"

#include "display/plots/plotter.h"
#include "run/loop/session_fixture.h"
#include "run/protocol/ui/protocol_plot_content.h"

namespace {

/// Faces from volume 3 to 4, as units of the protocol say it; responses to them, and one beyond.
StimulationProtocol protocolIn(ResolutionOfTime unit) {
    const bool inVolumes = unit == ResolutionOfTime::Volumes;
    StimulationProtocol protocol;
    protocol.resolutionOfTime = unit;
    protocol.conditionIndex("Faces");
    protocol.conditions[0].color = {255, 80, 60};
    EXPECT_TRUE(protocol.addInterval(0, inVolumes ? 3 : 4000, inVolumes ? 4 : 7999));
    protocol.hasResponses = true;
    const int table = protocol.responseConditionIndex("RESPONSE");
    struct Event {
        int volume, reactionTime, accuracy, omission;
    };
    for (const auto& [volume, reactionTime, accuracy, omission] :
         {Event{3, 480, 1, 0}, {4, 510, 0, 0}, {4, -1, -1, 1}, {4, -1, -1, 0}, {5, 700, -1, -1}}) {
        const int time = inVolumes ? volume : (volume - 1) * 2000;
        EXPECT_TRUE(protocol.addResponseInterval(table, time, time));
        protocol.setResponseValues(table, time, reactionTime, accuracy, omission, "1");
    }
    return protocol;
}

} // namespace

TEST(ResponsePlotContent, MarksStandAtTheirVolumeUnderTheirCondition) {
    for (const auto& [unit, shift] :
         {std::pair(ResolutionOfTime::Volumes, 0.0), {ResolutionOfTime::Milliseconds, -0.5}}) {
        const PlotContent content = responseContent(protocolIn(unit), 2000, 20, 4);
        ASSERT_EQ(content.bands.size(), 1U);
        EXPECT_DOUBLE_EQ(content.bands[0].from, 2.5);
        EXPECT_DOUBLE_EQ(content.bands[0].to, 4.5);
        const std::tuple<const char*, PlotMarkShape, QPointF> expected[] = {
            {"Faces", PlotMarkShape::Disc, {3 + shift, 480}},
            {"Faces, incorrect", PlotMarkShape::Circle, {4 + shift, 510}},
            {"Faces, omission", PlotMarkShape::Cross, {4 + shift, 0}},
            {"RESPONSE", PlotMarkShape::Disc, {5 + shift, 700}}};
        ASSERT_EQ(content.marks.size(), std::size(expected));
        for (size_t i = 0; i < std::size(expected); ++i) {
            const auto& [legend, shape, place] = expected[i];
            EXPECT_EQ(content.marks[i].legend, legend);
            EXPECT_EQ(content.marks[i].shape, shape) << legend;
            EXPECT_EQ(content.marks[i].points, std::vector{place}) << legend;
        }
        EXPECT_EQ(content.marks[0].color, QColor(255, 80, 60));
        EXPECT_LT(content.yRange->from, 0.0);
        EXPECT_GE(content.yRange->to, 735.0);
        EXPECT_EQ(responseContent(protocolIn(unit), 2000, 20, 2).marks.size(), 1U)
            << "later ones are not shown before their volume";
    }
    EXPECT_TRUE(
        responseContent(protocolIn(ResolutionOfTime::Milliseconds), 0, 20, 4).marks.empty());
}

using ResponsePlot = SessionFixture;

TEST_F(ResponsePlot, FollowsTheRunWhileItIsShown) {
    QWidget window;
    openResponsePlot(session, window);
    auto* dialog = window.findChild<ResponsePlotDlg*>("ResponsePlot");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowTitle(), "Response Plot");
    session.functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
    QtCortivoDoc& document = *session.functionalDocument;
    document.project.NrOfVolumes = 20;
    ASSERT_TRUE(document.project.allocateVolumes());
    const PlotContent& content = dialog->plotter().content();
    const auto passVolume = [&](int volume) {
        session.report.currentVolume = volume;
        EXPECT_TRUE(session.listeners.atStep(VolumeStep::Plots, {document, volume}));
        return content.marks.size();
    };
    session.listeners.runPrepared(document);
    EXPECT_EQ(content.note, "The protocol of this run has no responses");
    document.protocol = protocolIn(ResolutionOfTime::Volumes);
    EXPECT_EQ(passVolume(1), 0U);
    EXPECT_EQ(content.note, "Waiting for the first response");
    EXPECT_EQ(passVolume(2), 1U);
    EXPECT_EQ(content.lines.at(0).at, 3.0);
    dialog->hide();
    EXPECT_EQ(passVolume(4), 1U);
    openResponsePlot(session, window);
    EXPECT_EQ(content.marks.size(), 4U);
    EXPECT_EQ(window.findChildren<ResponsePlotDlg*>().size(), 1);
    session.listeners.documentsLeaving();
    EXPECT_TRUE(content.marks.empty() && content.bands.empty());
}
