// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/dry_run_dialog.h"

#include "base/paths.h"
#include "dialogs/appearance.h"
#include "dialogs/dialog_setup.h"
#include "feedback/ui/feedback_curve_painting.h"
#include "ui_dry_run_dialog.h"

#include <QFileInfo>
#include <QPainter>

namespace {

constexpr int fewestForecastLines = 3;
constexpr int mostForecastLines = 7;

SubjectPicture pictureOf(const FeedbackDryRun& run, QSize size, const StimulationProtocol& protocol,
                         const RunSession& session) {
    SubjectPicture picture{run.frame(), size, {}};
    if (picture.frame.kind != FeedbackFrame::Kind::TimeCourse)
        return picture;
    const FeedbackCurve curve = feedbackCurve(run.signalsNow(), run.choices());
    const QColor color = toQColor(regionColor(session.regionColors, curve.region));
    picture.paintCurve = [content = feedbackCurveContent(curve, run.volume(), run.nrOfVolumes(),
                                                         color, {protocol, session.feedback.TR()})](
                             QPainter& painter, QSize area) {
        paintCurveContent(painter, area, content);
    };
    return picture;
}

/// The picture with `ratio` pixels for each logical one.
QImage imageOf(const SubjectPicture& picture, QSize area, double ratio) {
    QImage image(area * ratio, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.setDevicePixelRatio(ratio);
    QPainter painter(&image);
    paintSubjectPicture(painter, area, picture);
    return image;
}

QString levelText(const FeedbackDryRun& run) {
    const FeedbackValues& values = run.values();
    if (!values.live)
        return "no feedback yet";
    if (run.frame().kind == FeedbackFrame::Kind::TimeCourse)
        return QString("signal %1").arg(double(values.CurValue1), 0, 'f', 1);
    if (values.classifier)
        return QString("level %1").arg(values.FbLevel1);
    if (values.pair)
        return QString("levels %1, %2  ·  baselines %3, %4  ·  targets %5, %6")
            .arg(values.FbLevel1)
            .arg(values.FbLevel2)
            .arg(double(values.Baseline1), 0, 'f', 1)
            .arg(double(values.Baseline2), 0, 'f', 1)
            .arg(values.TargetLevel)
            .arg(values.TargetLevel2);
    const QString baseline = values.Baseline1 > 0.0f
                                 ? QString("baseline %1").arg(double(values.Baseline1), 0, 'f', 1)
                                 : "no baseline";
    const QString level = QString("level %1  ·  %2").arg(values.FbLevel1).arg(baseline);
    const QString target =
        values.TargetLevel > 0 ? QString("target %1").arg(values.TargetLevel) : "no target";
    return level + "  ·  " + target + (values.hidesLevel() ? "  ·  not shown" : "");
}

QString readOut(const FeedbackDryRun& run) {
    return QString("Volume %1 of %2  ·  %3  ·  %4")
        .arg(run.volume() + 1)
        .arg(run.nrOfVolumes())
        .arg(run.conditionName(), levelText(run));
}

bool isSameFolder(const QString& a, const QString& b) {
    const QString canonical = QFileInfo(a).canonicalFilePath();
    return !b.isEmpty() && !canonical.isEmpty() && canonical == QFileInfo(b).canonicalFilePath();
}

} // namespace

struct FeedbackDryRunDlg::Saving {
    FeedbackDryRun run;
    StimulationProtocol protocol;
    FeedbackFiles files;
    QSize size;
    int next = 0;
};

QString missingForDryRun(const RunSession& session, const StimulationProtocol& protocol) {
    const RunSettings& settings = session.settings;
    if (protocol.nrOfConditions() > 0 && session.feedback.nrOfVolumes() > 0)
        return {};
    if (protocol.nrOfConditions() > 0)
        return "The settings file has no volumes to analyse.";
    if (!session.feedback.awaitsRun())
        return "The run in memory has no protocol: a dry run needs one.";
    if (isProtocolPathSet(settings.TDatFile) || isProtocolPathSet(settings.RealTimeProtocol))
        return "The protocol arrives during the run: a dry run needs one that is known before.";
    if (!isProtocolPathSet(settings.StimulationProtocol))
        return "The settings file names no protocol: a dry run needs one.";
    return QString("The protocol \"%1\" can not be read: a dry run needs it.")
        .arg(settings.StimulationProtocol);
}

FeedbackDryRunDlg::FeedbackDryRunDlg(RunSession& session, Shown shown, QWidget* parent)
    : QDialog(parent), session_(session), shown_(std::move(shown)),
      ui_(std::make_unique<Ui::FeedbackDryRunDlg>()) {
    ui_->setupUi(this);
    ui_->ReadOutLbl->setFont(numberFont(font(), 0.9));
    // Always two lines, and longer texts scroll, so that the picture keeps its size.
    ui_->ReadOutLbl->setFixedHeight(2 * QFontMetrics(ui_->ReadOutLbl->font()).lineSpacing());
    ui_->ForecastArea->setMinimumHeight(fewestForecastLines * fontMetrics().lineSpacing());
    ui_->ForecastArea->setMaximumHeight(mostForecastLines * fontMetrics().lineSpacing());
    ui_->SubjectScreenOp->setVisible(shown_ != nullptr);
    for (const int speed : {1, 2, 5, 10, 20})
        ui_->SpeedCmBx->addItem(QString("x%1").arg(speed), speed);
    connectControls();
    prepareDialog(*this);
    session_.listeners.add(*this, ListenerPlace::Dialogs);
}

FeedbackDryRunDlg::~FeedbackDryRunDlg() = default;

void FeedbackDryRunDlg::connectControls() {
    for (QRadioButton* button : {ui_->NoSignalBtn, ui_->IdealResponseBtn, ui_->NoiseBtn})
        connect(button, &QRadioButton::clicked, this, &FeedbackDryRunDlg::renew);
    connect(ui_->AmplitudeSpBx, &QDoubleSpinBox::valueChanged, this, &FeedbackDryRunDlg::renew);
    connect(ui_->FirstBtn, &QPushButton::clicked, this, [this] { showVolume(0); });
    connect(ui_->StepBackBtn, &QPushButton::clicked, this,
            [this] { showVolume(ui_->VolumeSlider->value() - 2); });
    connect(ui_->PlayBtn, &QPushButton::clicked, this, &FeedbackDryRunDlg::togglePlaying);
    connect(ui_->StepBtn, &QPushButton::clicked, this,
            [this] { showVolume(ui_->VolumeSlider->value()); });
    connect(ui_->LastBtn, &QPushButton::clicked, this,
            [this] { showVolume(ui_->VolumeSlider->maximum() - 1); });
    connect(ui_->VolumeSlider, &QSlider::valueChanged, this,
            [this](int volume) { showVolume(volume - 1); });
    connect(ui_->SpeedCmBx, &QComboBox::activated, this,
            [this] { setPlaying(player_.isActive()); });
    connect(ui_->PictureArea, &RenderArea::resized, this, &FeedbackDryRunDlg::draw);
    connect(ui_->SubjectScreenOp, &QCheckBox::clicked, this, [this](bool on) {
        if (!on)
            leaveSubject();
        else if (mayStep())
            draw();
    });
    connect(ui_->SaveBtn, &QPushButton::clicked, this, &FeedbackDryRunDlg::savePictures);
    connect(&player_, &QTimer::timeout, this, &FeedbackDryRunDlg::advance);
    connect(&saver_, &QTimer::timeout, this, &FeedbackDryRunDlg::saveNext);
}

bool FeedbackDryRunDlg::mayStep() {
    if (session_.phase.canBeStopped()) {
        ui_->ReadOutLbl->setText("A run is measured: the dry run rests until it is over.");
        return false;
    }
    if (outdated_)
        renewRun();
    return run_ != nullptr;
}

// The subject sees the run from now on.
void FeedbackDryRunDlg::rest() {
    outdated_ = true;
    subjectSees_ = false;
    setPlaying(false);
    if (saving_)
        endSaving("A run has begun: not all pictures were saved.");
}

void FeedbackDryRunDlg::documentsLeaving() {
    rest();
}

void FeedbackDryRunDlg::runPrepared(QtCortivoDoc&) {
    rest();
    renew(); // a reload does not hinder
}

void FeedbackDryRunDlg::loopEnded(QtCortivoDoc&) {
    outdated_ = true;
}

void FeedbackDryRunDlg::settingsFileChanged() {
    stopListening();
    hide();
    deleteLater();
}

void FeedbackDryRunDlg::feedbackChanged() {
    renew();
}

void FeedbackDryRunDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    renew();
}

void FeedbackDryRunDlg::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    setPlaying(false);
    leaveSubject();
}

void FeedbackDryRunDlg::renew() {
    outdated_ = true;
    if (isVisible() && mayStep())
        draw();
}

void FeedbackDryRunDlg::renewRun() {
    outdated_ = false;
    const int volume = run_ ? run_->volume() : 0;
    run_.reset();
    protocol_ = session_.feedback.protocol();
    const QString missing = missingForDryRun(session_, protocol_);
    ui_->PlayerFrm->setEnabled(missing.isEmpty());
    ui_->SaveBtn->setEnabled(missing.isEmpty());
    if (!missing.isEmpty()) {
        setPlaying(false);
        ui_->ForecastLbl->setText(missing);
        ui_->ReadOutLbl->clear();
        ui_->PictureArea->setPicture({});
        return;
    }
    DryRunOptions options;
    options.signal = ui_->NoSignalBtn->isChecked() ? MadeUpSignal::None
                     : ui_->NoiseBtn->isChecked()  ? MadeUpSignal::Noise
                                                   : MadeUpSignal::IdealResponse;
    options.amplitude = ui_->AmplitudeSpBx->value();
    options.nrOfVolumes = session_.feedback.nrOfVolumes();
    options.TR = session_.feedback.TR();
    const FeedbackChoices& choices = session_.feedback.choices();
    run_ = std::make_unique<FeedbackDryRun>(choices, protocol_, options);
    run_->goTo(std::clamp(volume, 0, std::max(run_->nrOfVolumes() - 1, 0)));
    ui_->ForecastLbl->setText(
        forecastFeedback(choices, protocol_, options.nrOfVolumes, options.TR).text);
    const QSignalBlocker quiet(ui_->VolumeSlider);
    ui_->VolumeSlider->setRange(1, std::max(run_->nrOfVolumes(), 1));
    ui_->AmplitudeSpBx->setEnabled(options.signal != MadeUpSignal::None);
}

void FeedbackDryRunDlg::showVolume(int volume) {
    if (!mayStep())
        return setPlaying(false);
    run_->goTo(volume);
    draw();
}

void FeedbackDryRunDlg::draw() {
    if (!run_ || outdated_ || saving_)
        return;
    {
        const QSignalBlocker quiet(ui_->VolumeSlider);
        ui_->VolumeSlider->setValue(run_->volume() + 1);
    }
    ui_->ReadOutLbl->setText(readOut(*run_));
    const SubjectPicture shown = pictureOf(*run_, frameSize(), protocol_, session_);
    ui_->PictureArea->setPicture(imageOf(shown, ui_->PictureArea->size(), devicePixelRatioF()));
    if (shown_ && ui_->SubjectScreenOp->isChecked() && !session_.phase.canBeStopped()) {
        subjectSees_ = true;
        shown_(shown);
    }
}

// As the run's frames: positions in them follow from the size.
QSize FeedbackDryRunDlg::frameSize() const {
    const QSize size = session_.feedback.picture().size();
    return size.isEmpty() ? ui_->PictureArea->size() : size;
}

void FeedbackDryRunDlg::leaveSubject() {
    if (!subjectSees_)
        return;
    subjectSees_ = false;
    shown_({FeedbackFrame(), frameSize(), {}});
    session_.feedback.update();
}

void FeedbackDryRunDlg::togglePlaying() {
    if (player_.isActive() || !mayStep())
        return setPlaying(false);
    if (run_->volume() + 1 >= run_->nrOfVolumes())
        showVolume(0);
    setPlaying(true);
}

void FeedbackDryRunDlg::setPlaying(bool playing) {
    ui_->PlayBtn->setText(playing ? "&Pause" : "&Play");
    if (!playing)
        return player_.stop();
    const double speed = ui_->SpeedCmBx->currentData().toDouble();
    player_.start(int(std::clamp(double(session_.feedback.TR()) / speed, 1.0, 60000.0)));
}

void FeedbackDryRunDlg::advance() {
    if (!mayStep())
        return setPlaying(false);
    showVolume(run_->volume() + 1);
    if (run_ && run_->volume() + 1 >= run_->nrOfVolumes())
        setPlaying(false);
}

void FeedbackDryRunDlg::savePictures() {
    if (saving_)
        return endSaving(QString("Stopped: %1 pictures were saved.").arg(saving_->next));
    if (!mayStep())
        return;
    setPlaying(false);
    const QString place =
        paths::join(session_.settings.settingsFileDir, session_.settings.projectBaseName + "-dry");
    chooseFileToSave(
        "Save Pictures", place, "Pictures (*.png)",
        [this](const QString& path) { beginSaving(path); }, &chooser_);
}

// The chosen name begins those of all pictures.
void FeedbackDryRunDlg::beginSaving(const QString& path) {
    if (!mayStep())
        return;
    const QString folder = paths::folderWithSlash(path);
    if (isSameFolder(folder, session_.settings.FeedbackTargetFolder))
        return showModelessWarning(
            QString("ERROR: \"%1\" is the feedback folder, where other programs would take the "
                    "pictures of a dry run for those of a run. Choose another folder.")
                .arg(folder));
    saving_ = std::make_unique<Saving>(Saving{*run_, protocol_, {}, frameSize()});
    saving_->files.begin(folder, paths::withoutExtension(paths::fileName(path)));
    ui_->SaveBtn->setText("&Stop Saving");
    ui_->PlayerFrm->setEnabled(false);
    saver_.start(0);
}

// One picture at a time, so that the window does not freeze and a run may begin.
void FeedbackDryRunDlg::saveNext() {
    Saving& saving = *saving_;
    saving.run.goTo(saving.next);
    saving.files.writePicture(
        imageOf(pictureOf(saving.run, saving.size, saving.protocol, session_), saving.size, 1.0),
        saving.next);
    if (!saving.files.fault().isEmpty())
        return endSaving(saving.files.fault());
    ++saving.next;
    const int count = saving.run.nrOfVolumes();
    ui_->ReadOutLbl->setText(QString("Saving picture %1 of %2").arg(saving.next).arg(count));
    if (saving.next >= count)
        endSaving(QString("%1 pictures were saved.").arg(count));
}

void FeedbackDryRunDlg::endSaving(const QString& outcome) {
    saver_.stop();
    saving_.reset();
    ui_->SaveBtn->setText("&Save Pictures...");
    ui_->PlayerFrm->setEnabled(true);
    ui_->ReadOutLbl->setText(outcome);
}

void openFeedbackDryRunDialog(RunSession& session, QWidget& window,
                              FeedbackDryRunDlg::Shown shown) {
    auto* dialog = window.findChild<FeedbackDryRunDlg*>();
    if (!dialog)
        dialog = new FeedbackDryRunDlg(session, std::move(shown), &window);
    showBeside(*dialog);
}
