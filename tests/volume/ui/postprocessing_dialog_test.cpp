// The dialog of post-processing, by the object names of its controls.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/ui/postprocessing_dialog.h"

#include "support/dialog_checks.h"
#include "support/scripted_messages.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

namespace {

class PostprocessingDialog : public testing::Test {
protected:
    PostprocessingDialog() { open(25); }

    void open(int nrOfSlices, const QString& name = "run", int nrOfVolumes = 40) {
        FMRProject project;
        project.projectPath = folder_.filePath(name + ".fmr");
        project.targetFolder = folder_.path() + "/";
        project.Prefix = "slices-";
        project.NrOfSlices = nrOfSlices;
        project.pixelSizeX = project.pixelSizeY = project.sliceThickness = 3.0f;
        dialog_ = std::make_unique<PostprocessingDlg>(project, nrOfVolumes, nullptr);
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

TEST_F(PostprocessingDialog, OkHandsOverWhatWasChosen) {
    QSignalSpy accepted(dialog_.get(), &QDialog::accepted);
    EXPECT_EQ(control<QLineEdit>("m_TemporalGaussianWidth").text(), "0.0015");
    for (const char* group : {"m_SliceScanTimeCorrection", "m_MotionCorrection",
                              "m_SpatialSmoothing", "m_TemporalFilters"})
        check(group);
    for (const char* choice :
         {"m_DescendingOrder", "m_SequentialOrder", "m_SincInterpolation",
          "m_SpatialSmoothingInFrequencyDomain", "m_SpatialSmoothingIn2D", "m_SpatialGaussInPixels",
          "m_TemporalGaussianSmoothing", "m_TemporalGaussInDataPoints", "m_GoOnWithStatistics"})
        click(choice);
    enter("m_SpatialSmoothingFWHMValue", "1.5");
    enter("m_HighPassCycles", "3");
    enter("m_TemporalGaussianWidth", " 2.5 ");
    QTest::keyClick(&control<QComboBox>("m_MotionMethod"), Qt::Key_Down);
    enter("qt_spinbox_lineedit", "12");
    // Each choice has its mark in the names.
    EXPECT_EQ(label("m_ResultInfo").section('\n', 1),
              "run_SCSD_3DMCLSV12_FD2DSS1.50px_THPGLMF3c_TDTS 2.5dp.fmr\n"
              "slices_SCSD_3DMCLSV12_FD2DSS1.50px_THPGLMF3c_TDTS 2.5dp.stc");
    QTest::keyClick(&control<QLineEdit>("m_HighPassCycles"), Qt::Key_Return);
    EXPECT_EQ(accepted.size(), 1);
    EXPECT_FALSE(dialog_->recomputeStatistics());
}

TEST_F(PostprocessingDialog, WhatCannotBeDoneIsNamedAndTheDialogStays) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"m_SpatialSmoothing", "m_SpatialSmoothingFWHMValue", "4,5",
         "ERROR: The width of the spatial smoothing is not a number."},
        {"m_TemporalFilters", "m_HighPassCycles", "99999999999999999999",
         "ERROR: The number of sines/cosines of *"},
        {"m_TemporalFilters", "m_TemporalGaussianWidth", "nan",
         "ERROR: The width of the temporal Gaussian is not a number."},
        {"m_TemporalFilters", "m_TemporalGaussianWidth", "0",
         "ERROR: The width of the temporal Gaussian must be above 0!"}};
    for (const auto& [group, field, text, message] : cases) {
        open(25);
        check(group);
        control<QAbstractButton>("m_TemporalGaussianSmoothing").setChecked(true);
        enter(field, text);
        messages_.expectWarning(message);
        click("OkBtn");
        EXPECT_TRUE(dialog_->isVisible()) << message;
        EXPECT_EQ(dialog_->focusWidget(), &control<QLineEdit>(field)) << message;
    }
    open(26); // slices of 80 ms don't fit into 2000 ms
    messages_.expectWarning("ERROR: Nothing is chosen yet*");
    click("OkBtn");
    check("m_SliceScanTimeCorrection");
    messages_.expectWarning("ERROR: NrOfSlices * InterSliceTime > TR !");
    click("OkBtn");
    EXPECT_TRUE(dialog_->isVisible());
    click("CancelBtn");
    EXPECT_EQ(dialog_->result(), QDialog::Rejected);
}

TEST_F(PostprocessingDialog, NamesTellTheOtherChoicesToo) {
    check("m_SliceScanTimeCorrection");
    EXPECT_EQ(label("m_ResultInfo").section('\n', 1, 1), "run_SCCAI.fmr");
    EXPECT_TRUE(label("m_SliceOrderInfo").startsWith("Slices in the order 1, 3, 5"));
    for (const char* choice : {"m_Interleaved2Order", "m_LinearInterpolation"})
        click(choice);
    check("m_TemporalFilters");
    for (const char* choice : {"m_TemporalHighPassFilter", "m_LinearTrendRemoval"})
        click(choice);
    EXPECT_EQ(label("m_ResultInfo").section('\n', 1, 1), "run_SCLAI2_LTR.fmr");
    EXPECT_TRUE(dialog_->recomputeStatistics());
}

TEST_F(PostprocessingDialog, OffersOnlyWhatMayBeChosen) {
    for (const int slices : {25, 26})
        for (const bool on : {false, true}) {
            open(slices);
            check("m_SliceScanTimeCorrection");
            check("m_TemporalFilters");
            control<QAbstractButton>("m_TemporalHighPassFilter").setChecked(on);
            control<QAbstractButton>("m_TemporalGaussianSmoothing").setChecked(on);
            EXPECT_EQ(control<QWidget>("m_InterleavedOrder").isEnabled(), slices == 25);
            EXPECT_EQ(control<QWidget>("m_LinearTrendRemoval").isEnabled(), !on);
            for (const char* name : {"m_HighPassCycles", "m_TemporalGaussianWidth",
                                     "m_TemporalGaussInSeconds", "m_TemporalGaussInDataPoints"})
                EXPECT_EQ(control<QWidget>(name).isEnabled(), on) << name;
        }
}

TEST_F(PostprocessingDialog, TheTargetIsAVolumeOfTheRun) {
    EXPECT_FALSE(control<QGroupBox>("m_MotionCorrection").isChecked());
    check("m_MotionCorrection");
    control<QSpinBox>("m_MotionTarget").setValue(41);
    EXPECT_EQ(dialog_->options().motion.targetVolume, 39);
    open(25, "run", 1); // nothing to align
    EXPECT_FALSE(control<QGroupBox>("m_MotionCorrection").isEnabled());
}

TEST_F(PostprocessingDialog, ARunMayBeginInAMessageAndDeleteIt) {
    struct DeletingMessages : UnattendedMessages {
        void show(MessageLevel, const QString&, const QString&) override { dialog.reset(); }
        std::unique_ptr<PostprocessingDlg>& dialog;
        explicit DeletingMessages(std::unique_ptr<PostprocessingDlg>& d) : dialog(d) {}
    } deleting(dialog_);
    open(26);
    check("m_SliceScanTimeCorrection");
    installMessageHandler(&deleting);
    dialog_->accept();
    installMessageHandler(&messages_);
    EXPECT_EQ(dialog_, nullptr);
}

TEST_F(PostprocessingDialog, EveryControlExplainsItselfAndHasAKeyOfItsOwn) {
    open(26, QString(200, 'w'));
    check("m_SliceScanTimeCorrection");
    expectExplained(*dialog_);
}

} // namespace
