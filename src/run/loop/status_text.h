// The texts of the panel LogInfos: before, while and after a run goes on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/operator_requests.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/document/run_report.h"
#include "run/document/session_phase.h"
#include "run/settings/run_settings.h"
#include "stats/statistical_maps.h"

#include <QString>

struct WholeRunModel;

/// On the current settings file, by what the session does with it. `fontSize` in points.
[[nodiscard]] QString offerText(int fontSize, const QString& settingsFileName);
[[nodiscard]] QString waitingText(int fontSize, const QString& settingsFileName);
[[nodiscard]] QString processingText(int fontSize, const QString& settingsFileName);
/// processingText(), with what the run needs of the memory that is available, both with their
/// units. `noneForPostprocessing`: the run fits, but no copy of it beside it.
[[nodiscard]] QString memoryNeedText(int fontSize, const QString& settingsFileName,
                                     const QString& need, const QString& available,
                                     bool noneForPostprocessing);
[[nodiscard]] QString finishedText(int fontSize, const QString& settingsFileName,
                                   const QString& title, bool savedCompletely);

/// The status of report.currentVolume, with timingPart().
[[nodiscard]] QString volumeStatusText(const RunReport& report, const OperatorRequests& requests,
                                       const RunSettings& settings, const QtCortivoDoc& document);
/// How many volumes were not corrected, since their motion was not found: a line that begins with
/// "<br>", or nothing.
[[nodiscard]] QString motionPart(int volumesWithoutMotion);
/// The sentences of timingWarnings() as lines that begin with "<br>"; empty without any.
[[nodiscard]] QString timingPart(const VolumeLedger& ledger);

/// Head of the texts around saving: where the loop stopped and when.
[[nodiscard]] QString savingTextHead(const OperatorRequests& requests, const StatisticalMaps& maps,
                                     int volumeIndex, qint64 runMilliseconds);

/// The panel between runs: the threshold, and below it what the model says on serial
/// correlations.
[[nodiscard]] QString betweenRunsText(const RunReport& report, const OperatorRequests& requests,
                                      const QtCortivoDoc& document);

/// The operator has closed the window while the session is not idle.
[[nodiscard]] QString endingText(int fontSize, Phase phase);

/// A plug-in ended itself when it was launched; and a text of the panel with that below it.
[[nodiscard]] QString pluginEndedText(int fontSize, const QString& pluginName);
[[nodiscard]] QString withPluginEnded(QString panelText, const QString& pluginName, int fontSize);

/// After post-processing: where the result lies, and how many volumes a motion correction did not
/// find.
[[nodiscard]] QString postprocessedText(int fontSize, const QString& projectName,
                                        int volumesWithoutMotion);
/// After an export: the file with the volumes.
[[nodiscard]] QString exportedText(int fontSize, const QString& fileName);

/// While a finished run is loaded from disk, and after that.
[[nodiscard]] QString reloadingText(int fontSize, const QString& settingsFileName,
                                    const QString& projectName);
[[nodiscard]] QString reloadedText(const QString& settingsFileName, const QString& projectName);

/// While the runs of a project are analysed, and after that. `projectName` is that of the project's
/// own results.
[[nodiscard]] QString analysingText(int fontSize, const QString& settingsFileName,
                                    const QString& projectName);
[[nodiscard]] QString analysedText(int fontSize, const QString& settingsFileName,
                                   const QString& projectName);
