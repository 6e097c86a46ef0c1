// The main window: it makes the widgets, wires slots to operations of the session and shows what
// the session tells it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/standard_folders.h"
#include "run/loop/run_session.h"
#include "run/loop/session_watch.h"
#include "run/settings/master_file.h"
#include "run/window/window_layout.h"

#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <memory>

class ContrastList;
class PostprocessingDlg;
class QAction;
class QCheckBox;
class QDoubleSpinBox;
class QFrame;
class QGroupBox;
class QLabel;
class QMenuBar;
class QPushButton;
class QSpinBox;
class QTextBrowser;
class QToolButton;
class QtCortivoView;

/// How regions are marked in the slices, in the order of Ctrl+R.
enum class RoiDisplayStyle { Rectangles = 0, RectanglesAndMarkedVoxels = 1, MarkedVoxels = 2 };

/// A facade. Its source is cut by concern: velo_cortivo_layout.cpp (widgets and sizes), _menus,
/// _keys (event filter), _controls (thresholds, contrasts, views), _session (settings files and
/// the timer), _run (what a run shows), _postprocessing, velo_cortivo.cpp (life of the window).
class VeloCortivo : public QWidget, public RunDisplay {
    Q_OBJECT

public:
    VeloCortivo(const StandardFolders& folders, EventPump& pump);
    ~VeloCortivo() override;

    [[nodiscard]] RunSession& session() { return session_; }

    /// Reads MasterVCO and takes what it says. False when there is neither a file nor a way to make
    /// one: the window then has its default size and place.
    [[nodiscard]] bool readMasterFile();
    /// Writes what the operator changed: the settings file, the window's size and place.
    [[nodiscard]] bool writeMasterFile();
    /// Takes a settings file; with an empty name a file chooser asks for it.
    void setSettingsFile(const QString& name);
    /// The look at the settings files; the first form is used before the event loop runs.
    void timerCheckState(bool BeforeAppExec);
    /// Skin, mask and panels for the window's size.
    void applyWindowSize();
    /// Moves the window to the place that the master file gives on this screen.
    void placeOnScreen();

    // What a run shows.
    void runStarting() override;
    void documentsLeaving() override;
    void documentsArrived() override;
    void runPrepared() override;
    void preparationFailed() override;
    void runEnded() override;
    void setRunButtonState(RunButtonState state) override;
    void showLogText(const QString& html) override;
    void refreshViewButtons() override;
    void updateViews() override;
    [[nodiscard]] std::unique_ptr<ProgressReporter> openSavingProgress() override;

public Q_SLOTS:
    void initVars();
    void initDefaultPalettes();
    void timerCheckState() { timerCheckState(false); }
    void slotRealTimeAnalysis();
    void slotReloadData();
    void slotToNextRecording() { toNeighbour(+1); }
    void slotToPreviousRecording() { toNeighbour(-1); }
    void slotUpdateAutoAdvance();
    void slotUpdateAutoStart();
    void onPreLoadROI();
    void onPreLoadVOI();
    void slotSetVCOSettingsFile();
    void slotSaveAsBMP();
    void slotSwitchWindowSize();
    void slotUpdateWindowSize();
    void slotClose() { close(); }
    void slotExitVCO() { close(); }
    void slotShowLicenseInfoDlg();
    void slotShowAboutDlg();
    void slotFileMenuAboutToShow();
    void slotAnalysisMenuAboutToShow();
    void slotViewMenuAboutToShow();
    void slotChangeThreshold();
    void slotChangeColorMaxThreshold();
    void slotChangeClusterSize();
    void slotChangeMultiSliceROISelection();
    void slotConjunctionAnalysis();
    void slotSwitchToSignificanceColorCoding() { session_.colorCodingChanged(true); }
    void slotSwitchToMultiMapColorCoding() { session_.colorCodingChanged(false); }
    void slotSwitchToFMRView();
    void slotShowOnEPIs() { session_.showOnFirstVolume(); }
    void slotShowOnCurrentEPIs() { session_.showOnCurrentVolume(); }
    void slotShowOnInplanes() { session_.showOnInplanes(); }
    void slotPostProcessData();
    void onShowROIsAsRectangles();
    void onShowROIsAsMarkedVoxels();
    void onShowROIsAsRectanglesAndMarkedVoxels();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    /// Modifiers of the latest key or mouse press, until the next release.
    struct InputFlags {
        bool control = false;
        bool shift = false;
        bool alt = false;
        Qt::MouseButtons mouseButtons = Qt::NoButton;
    };

    void createTitleRow();
    void createInputPanel();
    void createViewPanels();
    void createContrastPanel();
    void createMenus();
    void connectControls();
    void placePanels();

    [[nodiscard]] bool handleKey(int key, Qt::KeyboardModifiers modifiers);
    void nextRoiDisplayStyle();

    void refreshControls();
    void setPreLoadEnabled(bool enabled);
    void toNeighbour(int step);
    void lookOnce();
    void clearRunDisplay();
    void askForFolder(bool beforeAppExec);
    void showOutcome(const WatchOutcome& outcome);
    void refreshSettings();
    void postprocess(const PostprocessingOptions& options, bool recomputeStatistics);
    void endIfAsked();
    void rememberMaster();
    [[nodiscard]] bool documentShown() const;

    RunSession session_;
    EventPump& pump_;
    StandardFolders folders_;
    MasterFile master_;     ///< in force
    MasterFile remembered_; ///< as read, with what the operator changed
    QString masterTextAtStart_;
    bool autoStartPending_ = false;
    int highestRunNumber_ = -1;
    int checkStateInterval_ = 1000; ///< milliseconds
    QTimer timer_;
    bool runInProgress_ = false; ///< from its start to the end of saving
    bool endAfterRun_ = false;
    /// The next volume does not give the keyboard focus to the slices: the operator went to a
    /// control with the Tab key, or clicked in a number to change it.
    bool controlKeepsFocus_ = false;
    InputFlags inputFlags_;
    RoiDisplayStyle roiDisplayStyle_ = RoiDisplayStyle::RectanglesAndMarkedVoxels;
    QPixmap skin_;
    std::optional<QPoint> dragOffset_; ///< of the pointer in the window, while it is dragged

    QFrame* titleFrame_ = nullptr;
    QFrame* menuBarFrame_ = nullptr;
    QFrame* windowButtonsFrame_ = nullptr;
    QFrame* imageView_ = nullptr;
    QFrame* viewButtonsFrame_ = nullptr;
    QFrame* inputPanel_ = nullptr;
    QGroupBox* contrastGroup_ = nullptr;
    QTextBrowser* logInfos_ = nullptr;
    QMenuBar* menuBar_ = nullptr;
    QToolButton* recordButton_ = nullptr;
    QToolButton* toBeginButton_ = nullptr;
    QToolButton* toEndButton_ = nullptr;
    QToolButton* reloadButton_ = nullptr;
    QPushButton* preLoadRoiButton_ = nullptr;
    QPushButton* preLoadVoiButton_ = nullptr;
    QToolButton* epiSlicesButton_ = nullptr;
    QToolButton* epiSlices3DButton_ = nullptr;
    QToolButton* vmrButton_ = nullptr;
    QToolButton* leftHemisphereButton_ = nullptr;
    QToolButton* rightHemisphereButton_ = nullptr;
    QDoubleSpinBox* thresholdBox_ = nullptr;
    QDoubleSpinBox* colorMaxThresholdBox_ = nullptr;
    QSpinBox* clusterSizeBox_ = nullptr;
    QSpinBox* multiSliceBox_ = nullptr;
    QCheckBox* conjunctionBox_ = nullptr;
    ContrastList* contrastList_ = nullptr;
    QAction* setFileAction_ = nullptr;
    QAction* saveViewAction_ = nullptr;
    QAction* significanceAction_ = nullptr;
    QAction* contrastColorsAction_ = nullptr;
    QAction* postProcessAction_ = nullptr;
    QAction* multiSliceViewAction_ = nullptr;
    QAction* firstVolumeAction_ = nullptr;
    QAction* currentVolumeAction_ = nullptr;
    QAction* inplanesAction_ = nullptr;
    QtCortivoView* functionalView_ = nullptr;          ///< a child of ImageView
    QPointer<PostprocessingDlg> postprocessingDialog_; ///< of the run in memory
};
