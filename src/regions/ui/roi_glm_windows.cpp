// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/ui/roi_glm_windows.h"

#include "base/paths.h"
#include "dialogs/dialog_setup.h"
#include "dialogs/information_browser.h"
#include "display/plots/plot_2d_dialog.h"
#include "display/plots/plot_colors.h"
#include "display/plots/plotter.h"
#include "regions/ui/session_region.h"

#include <numeric>

namespace {

const QColor residualColor(0xff, 0xb3, 0x47);

std::vector<float> aroundMean(const std::vector<float>& residuals, const std::vector<float>& data) {
    const double sum = std::accumulate(data.begin(), data.end(), 0.0);
    const auto mean = float(sum / double(std::max<size_t>(data.size(), 1)));
    std::vector<float> values = residuals;
    for (float& value : values)
        value += mean;
    return values;
}

PlotCurve curve(const QString& legend, const QColor& color, std::vector<float> values) {
    PlotCurve result;
    result.legend = legend;
    result.color = color;
    result.values = std::move(values);
    return result;
}

} // namespace

PlotContent regionGLMContent(const RegionGLM& model, const QString& heading) {
    const ROIGLM& fit = model.whitened ? *model.whitened : model.fit;
    PlotContent content;
    content.title = heading;
    if (model.whitened)
        content.title += QStringLiteral(" · whitened with AR(1) = %1")
                             .arg(QString::number(model.whitened->whitenedBy, 'f', 3));
    content.xLabel = "Time";
    content.yLabel = "Signal";
    content.curveLabel = "Curve %i: ";
    content.xStart = model.whitened ? 2.0 : 1.0;
    content.curves = {curve("Data", plotColors::text, fit.data),
                      curve("Model", plotColors::accent, fit.model),
                      curve("Residuals", residualColor, aroundMean(fit.residuals, fit.data))};
    return content;
}

QString regionGLMHeading(const RunSession& session, int number) {
    const QtCortivoDoc* document = session.functionalDocument.get();
    const QString project =
        document ? paths::withoutExtension(paths::fileName(document->project.projectPath))
                 : QString();
    return project.isEmpty() ? regionName(number) : project + " · " + regionName(number);
}

void showRegionGLM(const RegionGLM& model, const QString& heading, QWidget& window) {
    constexpr char name[] = "GLMPlot";
    auto* plot = window.findChild<Plot2DDlg*>(name);
    if (!plot) {
        plot = new Plot2DDlg(&window);
        plot->setObjectName(name);
        plot->setTitle("GLM - Data, Model and Residuals");
        plot->resize(640, 420); // beside it the slices stay visible
    }
    plot->init();
    plot->plotter().setSaveFolder(paths::folderWithSlash(model.page));
    plot->setContent(regionGLMContent(model, heading));
    constexpr int secondPlace = 1;
    showInInformationBrowser(model.page, window, secondPlace);
    showBeside(*plot);
}
