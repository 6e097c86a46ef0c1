// The maps of plug-ins: what a plug-in and the operator do with them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/operator_requests.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/loop/run_display.h"
#include "run/loop/run_listeners.h"

#include <functional>

class SessionPhase;

/// A member of the session. What is registered stands in OperatorRequests::pluginMaps, the values
/// in the document; the listeners hear mapListChanged() after each change of what is shown.
class SessionPluginMaps : public RunListener {
public:
    struct Parts {
        const SessionPhase& phase;
        OperatorRequests& requests;
        RunListeners& listeners;
        RunDisplay& display;
        /// The thresholds have changed, as if by the operator.
        std::function<void()> thresholdsChanged;
    };

    explicit SessionPluginMaps(const Parts& parts);

    /// By the plug-in. Names and states are shown with the next updateList().
    bool registerMaps(int count);
    void setName(int map, const QString& name);
    void setState(int map, int state);
    /// Ignored unless finite. For this run and those to come: becomes the lower threshold; an upper
    /// one that is not above it any more becomes it plus 1.0. The number field of the lower
    /// threshold shows the one that was set last.
    void setThreshold(float threshold);
    /// The list, and between runs the views; a run shows its maps at the end of each volume.
    void updateList();
    /// The plug-in is closed: there are no maps any more, nor their values in the document.
    void clear();

    /// By plug-in or operator.
    void show(bool shown);
    /// By the operator: the mark of a column, and a map by itself.
    void toggleState(int map, int bit);
    void showAlone(int map);

    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override;
    void runPrepared(QtCortivoDoc& functional) override;

private:
    void applyThreshold();
    /// What is shown has changed: list and views.
    void shownChanged();

    Parts parts_;
    QtCortivoDoc* document_ = nullptr;
};
