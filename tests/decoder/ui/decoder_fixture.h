// The window of the letter decoder, with a file of curves that spell a word.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/curves_text.h"
#include "decoder/ideal_responses.h"
#include "decoder/ui/decoding_settings_dialog.h"
#include "decoder/ui/decoding_window.h"
#include "run/loop/session_fixture.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QSpinBox>
#include <QTableWidget>

class DecoderFixture : public SessionFixture {
protected:
    DecoderFixture() {
        session.settings.TargetFolder = path("");
        session.settings.FeedbackTargetFolder = path("feedback/");
        const ReferenceCurves references = idealResponses(settings_.IdealResponseWindowSize, TR);
        EXPECT_TRUE(writeReferences(references, path("own.rtc")));
        put("word.rtc", curvesOf("VELO", references));
        openBOLDDecoder(session, window);
        decoding = window.findChild<BOLDDecodingMW*>();
    }

    template<typename Widget> Widget& find(const char* name) {
        auto* found = decoding->findChild<Widget*>(name);
        if (!found)
            qFatal("There is no %s.", name);
        return *found;
    }
    void click(const char* name) { find<QAbstractButton>(name).click(); }
    void trigger(const char* name) { find<QAction>(name).trigger(); }
    [[nodiscard]] QStringList decoded() {
        return {find<QLineEdit>("DecodedText1Ed").text(), find<QLineEdit>("DecodedText2Ed").text(),
                find<QLineEdit>("DecodedText3Ed").text()};
    }
    /// Through the dialog.
    void prepareOffline(const QString& data = "word.rtc") {
        trigger("SettingsAction");
        click("OfflineAnalysisOp");
        find<QLineEdit>("OfflineRTCFileEd").setText(path(data));
        find<QLineEdit>("IdealResponsesRTCFileEd").setText(path("own.rtc"));
        find<QSpinBox>("NrOfTimePointsSpBx").setValue(nrOfVolumes());
        click("OkBtn");
    }
    [[nodiscard]] int nrOfVolumes() const { return 4 * settings_.FullWindowSize + 2; }

    static constexpr double TR = 70000.0 / 42;
    QWidget window;
    BOLDDecodingMW* decoding = nullptr; ///< a child of the window

private:
    /// The task's region responds as the reference does, its helper half as much.
    [[nodiscard]] QByteArray curvesOf(const QString& word, const ReferenceCurves& references) {
        ROICurves curves;
        curves.fill(std::vector<float>(size_t(nrOfVolumes()), 100.0f));
        for (int letter = 0; letter < word.size(); ++letter) {
            const LetterCode code = *codeOf(word[letter]);
            const auto first = firstPointOfLetter(settings_, letter);
            for (const auto& [roi, share] :
                 {std::pair{code.task, 1.0f}, {code.task + nrOfTaskROIs, 0.5f}})
                std::ranges::transform(
                    references[size_t(code.reference)], curves[size_t(roi)].begin() + first,
                    [share](float value) { return 100 + share * (value - 100); });
        }
        return curvesText(curves, curves.size());
    }

    const DecoderSettings settings_ = defaultDecoderSettings();
};
