// The feedback's view of a run: the parts of the document as the levels need them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_curve.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/document/run_report.h"
#include "run/settings/run_settings.h"

/// Curves, constants and tables at the current volume. They are those of the document, and valid
/// until it changes.
[[nodiscard]] FeedbackSignals feedbackSignals(const QtCortivoDoc& document,
                                              const RunReport& report);
/// The protocol that the settings name, for use before a run; nothing, without a message, for one
/// that arrives during the run and when it can't be read.
[[nodiscard]] std::optional<StimulationProtocol> plannedProtocol(const RunSettings& settings);
