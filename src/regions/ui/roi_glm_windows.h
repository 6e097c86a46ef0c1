// The windows of the model of a region: its curves and its tables.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"
#include "run/loop/region_glm.h"

class QWidget;
class RunSession;

/// Data, model and residuals of the last fit over the volumes, from 1. Residuals stand around the
/// mean of the data. With the correction of serial correlations the curves are the whitened ones,
/// those of the second table, from volume 2 on.
[[nodiscard]] PlotContent regionGLMContent(const RegionGLM& model, const QString& heading);

/// "test · ROI 1": project and region.
[[nodiscard]] QString regionGLMHeading(const RunSession& session, int number);

/// Shows the curves in the window "GLMPlot" and the page in the information browser, both children
/// of `window`. They stay when the run is replaced, and say whose they are.
void showRegionGLM(const RegionGLM& model, const QString& heading, QWidget& window);
