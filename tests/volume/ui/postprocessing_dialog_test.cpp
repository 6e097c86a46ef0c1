// The dialog of post-processing, by the object names of its controls.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/ui/postprocessing_dialog.h"

#include "support/scripted_messages.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class PostprocessingDialog : public testing::Test {
protected:
    PostprocessingDialog() { open(25); }

    void open(int nrOfSlices, const QString& name = "run") {
        FMRProject project;
        project.projectPath = folder_.filePath(name + ".fmr");
        project.targetFolder = folder_.path() + "/";
        project.Prefix = "slices-";
        project.NrOfSlices = nrOfSlices;
        project.pixelSizeX = project.pixelSizeY = project.sliceThickness = 3.0f;
        dialog_ = std::make_unique<PostprocessingDlg>(project, 40, nullptr);
        dialog_->open();
    }
    template<typename Widget> Widget& control(const char* name) {
        auto* widget = dialog_->findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name;
        return *widget;
    }
    void click(const char* name) { control<QAbstractButton>(name).click(); }
    void check(const char* group) { control<QGroupBox>(group).setChecked(true); }
    void enter(const char* name, const QString& text) {
        auto& field = control<QLineEdit>(name);
        field.clear();
        QTest::keyClicks(&field, text);
    }
    QString label(const char* name) { return control<QLabel>(name).text(); }

    ScriptedMessages messages_;
    QTemporaryDir folder_;
    std::unique_ptr<PostprocessingDlg> dialog_;
};

TEST_F(PostprocessingDialog, OpensWithTheUsualChoicesAndNoGroup) {
    for (const bool even : {false, true}) {
        open(even ? 24 : 25);
        const PostprocessingOptions options = dialog_->options();
        EXPECT_FALSE(options.sliceScanTime.checked || options.spatial.checked ||
                     options.temporal.checked);
        for (const char* chosen :
             {"m_AscendingOrder", "m_CubicSplineInterpolation", "m_TemporalHighPassFilter",
              "m_GoOnWithStatistics", even ? "m_Interleaved2Order" : "m_InterleavedOrder"})
            EXPECT_TRUE(control<QAbstractButton>(chosen).isChecked()) << chosen;
        EXPECT_EQ(control<QAbstractButton>("m_TemporalHighPassFilter").text(),
                  "High-pass (GLM-Fourier):");
        EXPECT_EQ(control<QLineEdit>("m_HighPassCycles").text(), "2");
        EXPECT_EQ(control<QLineEdit>("m_TemporalGaussianWidth").text(), "0.0015");
        check("m_SliceScanTimeCorrection");
        EXPECT_EQ(control<QAbstractButton>("m_InterleavedOrder").isEnabled(), !even);
        EXPECT_EQ(options.sliceScanTime.interleaved2SliceOrder, even);
        EXPECT_TRUE(label("m_SliceOrderInfo")
                        .contains(even ? "order 2, 4, 6, 8, 10, 12 ... 19, 21, 23;"
                                       : "order 1, 3, 5, 7, 9, 11 ... 20, 22, 24;"))
            << label("m_SliceOrderInfo").toStdString();
    }
}

TEST_F(PostprocessingDialog, OkHandsOverWhatWasChosen) {
    QSignalSpy accepted(dialog_.get(), &QDialog::accepted);
    for (const char* group :
         {"m_SliceScanTimeCorrection", "m_SpatialSmoothing", "m_TemporalFilters"})
        check(group);
    for (const char* choice :
         {"m_DescendingOrder", "m_SequentialOrder", "m_SincInterpolation",
          "m_SpatialSmoothingInFrequencyDomain", "m_SpatialSmoothingIn2D", "m_SpatialGaussInPixels",
          "m_TemporalGaussianSmoothing", "m_TemporalGaussInDataPoints", "m_GoOnWithStatistics"})
        click(choice);
    enter("m_SpatialSmoothingFWHMValue", "1.5");
    enter("m_HighPassCycles", "3");
    enter("m_TemporalGaussianWidth", " 2.5 ");
    // Each choice has its mark in the names.
    EXPECT_EQ(label("m_ResultInfo").section('\n', 1),
              "run_SCSD_FD2DSS1.50px_THPGLMF3c_TDTS 2.5dp.fmr\n"
              "slices_SCSD_FD2DSS1.50px_THPGLMF3c_TDTS 2.5dp.stc");
    QTest::keyClick(&control<QLineEdit>("m_HighPassCycles"), Qt::Key_Return);
    EXPECT_EQ(accepted.size(), 1);
    EXPECT_FALSE(dialog_->recomputeStatistics());
}

TEST_F(PostprocessingDialog, WhatCannotBeDoneIsNamedAndTheDialogStays) {
    const struct {
        const char* group;
        const char* field;
        const char* text;
        const char* message;
    } cases[] = {{"m_SpatialSmoothing", "m_SpatialSmoothingFWHMValue", "4,5",
                  "ERROR: The width of the spatial smoothing is no number."},
                 {"m_SpatialSmoothing", "m_SpatialSmoothingFWHMValue", "1e9",
                  "ERROR: The width of the spatial smoothing is too large!"},
                 {"m_TemporalFilters", "m_HighPassCycles", "",
                  "ERROR: The number of sines/cosines is no number."},
                 {"m_TemporalFilters", "m_HighPassCycles", "99999999999999999999",
                  "ERROR: The number of sines/cosines of *"},
                 {"m_TemporalFilters", "m_TemporalGaussianWidth", "nan",
                  "ERROR: The width of the temporal Gaussian is no number."}};
    for (const auto& c : cases) {
        open(25);
        check(c.group);
        control<QAbstractButton>("m_TemporalGaussianSmoothing").setChecked(true);
        enter(c.field, c.text);
        messages_.expect(MessageLevel::Warning, c.message);
        click("OkBtn");
        EXPECT_TRUE(dialog_->isVisible()) << c.message;
        EXPECT_EQ(dialog_->focusWidget(), &control<QLineEdit>(c.field)) << c.message;
    }
    open(26, QString(200, 'w')); // 26 slices of 80 ms don't fit into 2000 ms
    messages_.expect(MessageLevel::Warning, "ERROR: Nothing is chosen yet*");
    click("OkBtn");
    check("m_SliceScanTimeCorrection");
    EXPECT_LE(dialog_->sizeHint().height(), 700) << "the smallest screen has 768 lines";
    EXPECT_LE(dialog_->sizeHint().width(), 1000);
    messages_.expect(MessageLevel::Warning, "ERROR: NrOfSlices * InterSliceTime > TR !");
    click("OkBtn");
    EXPECT_TRUE(dialog_->isVisible());
    click("CancelBtn");
    EXPECT_EQ(dialog_->result(), QDialog::Rejected);
}

TEST_F(PostprocessingDialog, FiltersOfAGroupFollowIt) {
    const auto isEnabled = [this](const char* name) { return control<QWidget>(name).isEnabled(); };
    EXPECT_FALSE(isEnabled("m_HighPassCycles") || isEnabled("m_TemporalGaussianWidth"));
    check("m_TemporalFilters");
    EXPECT_TRUE(isEnabled("m_HighPassCycles"));
    EXPECT_FALSE(isEnabled("m_LinearTrendRemoval")) << "the high-pass filter includes it";
    click("m_TemporalHighPassFilter");
    EXPECT_TRUE(label("m_ResultInfo").startsWith("Nothing"));
    click("m_LinearTrendRemoval");
    EXPECT_TRUE(label("m_ResultInfo").contains("run_LTR.fmr"));
}

} // namespace
