// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoding_log.h"
#include "decoder/letter_decoder.h"

#include "support/expected_table.h"

#include <algorithm>
#include <cmath>

namespace {

/// Curves, references and cases of make_letters_expected.py.
constexpr const char* table = "decoder/expected_letters.tsv";

struct Case {
    DecoderSettings settings;
    int letter = 0;
    ReferenceCurves references;
    ROICurves curves;
    Cells expected; ///< the other cells
};

/// The first points of some lines; of curves that aren't in the table 0.5.
template<typename Curves> Curves curvesOf(const QByteArray& name, size_t count, int points) {
    Curves curves;
    curves.fill(std::vector<float>(size_t(points), 0.5f));
    const std::vector<Cells> lines = expectedLines(table, name);
    for (size_t i = 0; i < count; ++i)
        curves[i] = numbersOf<float>(lines[i].first(points));
    return curves;
}

Case caseOf(const Cells& cells) {
    Case c;
    int column = 0, available = 0;
    DecoderSettings& s = c.settings;
    for (int* field :
         {&s.FullWindowSize, &s.SkipAtBeginOfWindow, &s.SkipAtEndOfWindow,
          &s.IdealResponseWindowSize, &s.SkipTimePointsAtBegin, &s.MeanForPercSignalFrom,
          &s.MeanForPercSignalTo, &c.letter, &s.NrOfTimePoints, &available})
        *field = cells[column++].toInt();
    s.HelperVOIsMode = HelperVOIs(cells[column++].toInt());
    for (bool* field : {&s.UseCorr, &s.UseBeta, &s.ABCDMode})
        *field = cells[column++] == "1";
    s.CorrBetaTau = cells[column++].toFloat();
    const int nrOfROIs = cells[column++].toInt();
    const auto weights = numbersOf<float>(cells[column++].split(' '));
    for (size_t i = 0; i < weights.size(); ++i)
        s.TaskVOIWeights[i / 6][i % 6] = weights[i];
    s.TaskVOIWeights = scaledWeights(s.TaskVOIWeights);
    c.references =
        curvesOf<ReferenceCurves>("references " + cells[column++], 9, s.IdealResponseWindowSize);
    c.curves = curvesOf<ROICurves>("curves " + cells[column++], size_t(nrOfROIs), available);
    c.expected = cells.mid(column);
    return c;
}

QByteArray lettersOf(const LetterDecoding& decoding) {
    QString letters;
    for (const RankedLetter& ranked : decoding.best)
        letters += ranked.letter;
    return letters.toLatin1();
}

/// The numbers of a log in their order, those of the tables and then the scores of the ranks.
std::vector<double> numbersOf(const QString& log) {
    std::vector<double> numbers;
    for (const QString& line : log.split(u'\n')) {
        if (line.startsWith("Rank "))
            numbers.push_back(line.section(u'(', 1).chopped(1).toDouble());
        else if (line.startsWith(u' '))
            for (const QString& number : line.simplified().split(u' '))
                numbers.push_back(number.toDouble());
    }
    return numbers;
}

TEST(LetterDecoding, GivesWhatTheFormulasGive) {
    for (const Cells& cells : expectedLines(table, "window")) {
        SCOPED_TRACE(cells.first(19).join('\t').toStdString());
        const Case c = caseOf(cells);
        const auto decoding = decodeLetter(c.settings, c.references, c.curves, c.letter);
        ASSERT_EQ(decoding.has_value(), !c.expected.isEmpty());
        if (!decoding)
            continue;
        EXPECT_EQ(lettersOf(*decoding), c.expected[0]);
        QByteArray best;
        for (const int reference : decoding->bestReference)
            best += QByteArray::number(reference);
        EXPECT_EQ(best, c.expected[1]);
        const std::vector<double> logged = numbersOf(decodingLog(c.settings, *decoding));
        const std::vector<double> exact = numbersOf(c.expected.mid(2));
        ASSERT_EQ(logged.size(), exact.size());
        for (size_t i = 0; i < exact.size(); ++i)
            EXPECT_NEAR(logged[i], exact[i], 1e-5 * std::fabs(exact[i]) + 1e-6) << i;
    }
}

TEST(LetterDecoder, FollowsARunAndTheOperator) {
    for (const Cells& cells : expectedLines(table, "stream")) {
        SCOPED_TRACE(cells.join('\t').toStdString());
        const Case c = caseOf(cells);
        DecoderSettings settings = c.settings;
        settings.NrOfLetters = c.letter;
        const bool live = c.expected[0] == "1";
        LetterDecoder decoder;
        decoder.begin(settings, c.references,
                      live ? LetterDecoder::Source::Run : LetterDecoder::Source::File);
        const auto decodeIf = [&](bool isDue, const ROICurves& soFar) {
            return isDue ? decoder.decode(soFar) : std::nullopt;
        };
        const auto handle = [&](char event) -> std::optional<LetterDecoding> {
            ROICurves soFar = c.curves;
            switch (event) {
            case 'v':
                if (live)
                    for (std::vector<float>& curve : soFar)
                        curve.resize(size_t(decoder.currentVolume() + 2));
                return decodeIf(decoder.takeVolume(decoder.currentVolume() + 1), soFar);
            case 'e':
                return decodeIf(decoder.endRun(), c.curves);
            case 'n':
                decoder.goToNextLetter();
                return decoder.decode(c.curves);
            case 'p':
                decoder.goToPreviousLetter();
                return decoder.decode(c.curves);
            case 'f':
            case 'F':
                decoder.changeABCDMode(event == 'f');
                return std::nullopt;
            default:
                decoder.changeScores(true, event == 'b');
                return std::nullopt;
            }
        };
        QByteArrayList steps;
        for (int step = 0; step < c.expected[1].size(); ++step)
            if (const auto decoding = handle(c.expected[1][step]))
                steps << QByteArray::number(step) + ':' +
                             QByteArray::number(decoder.currentLetter()) + ':' +
                             lettersOf(*decoding);
        EXPECT_EQ(steps.join(' '), c.expected[2]);
        QString end =
            QStringLiteral("%1/%2").arg(decoder.currentLetter()).arg(decoder.currentVolume());
        for (int rank = 0; rank < 3; ++rank)
            end += u'/' + decoder.decodedText(rank);
        EXPECT_EQ(end.toLatin1(), c.expected[3]);
        ASSERT_TRUE(decoder.latest());
        EXPECT_EQ(lettersOf(*decoder.latest()), steps.back().right(3));
        decoder.restart(77);
        settings = decoder.settings();
        EXPECT_EQ(settings.NrOfTimePoints, 77);
        EXPECT_EQ(settings.FullWindowSize, c.settings.FullWindowSize);
        EXPECT_EQ(decoder.references(), c.references);
        EXPECT_EQ(decoder.currentLetter() + decoder.currentVolume(), -2);
        EXPECT_TRUE(decoder.decodedText(0).isEmpty() && !decoder.latest());
    }
}

TEST(LetterDecoder, NeedsFittingReferencesAndROIs) {
    const Case c = caseOf(expectedLines(table, "window")[0]);
    ReferenceCurves references = c.references;
    LetterDecoder decoder;
    for (const int nrOfROIs : {2, 3, 6, 7}) {
        DecoderSettings settings = c.settings;
        settings.NrOfDataROIs = nrOfROIs;
        decoder.begin(settings, references, LetterDecoder::Source::File);
        EXPECT_EQ(decoder.isReady(), nrOfROIs == 3 || nrOfROIs == 6);
    }
    DecoderSettings endless = c.settings;
    endless.NrOfTimePoints = 0;
    decoder.begin(endless, references, LetterDecoder::Source::File);
    EXPECT_FALSE(decoder.isReady());
    references[8].resize(5);
    decoder.begin(c.settings, references, LetterDecoder::Source::File);
    EXPECT_FALSE(decoder.isReady());
    decoder.goToNextLetter();
    EXPECT_FALSE(decoder.decode(c.curves));
    EXPECT_FALSE(decoder.takeVolume(0));
    EXPECT_EQ(decoder.currentVolume(), -1);
}

TEST(DecoderSettings, SayWhichHelpersAreMissing) {
    using enum HelperVOIs;
    const std::tuple<int, HelperVOIs, bool, const char*> cases[] = {
        {3, Both, true, "Helper ROIs 1 to 3 are missing: the shape of their tasks counts half"},
        {4, OnlyHelpers, true,
         "Helper ROIs 2 to 3 are missing: the shape of their tasks counts as 0"},
        {5, Both, true, "Helper ROI 3 is missing: the shape of its task counts half"},
        {6, Both, true, ""},
        {3, OnlyTasks, true, ""},
        {3, OnlyHelpers, false, ""}};
    for (const auto& [nrOfROIs, mode, useBeta, note] : cases) {
        DecoderSettings settings;
        settings.NrOfDataROIs = nrOfROIs;
        settings.HelperVOIsMode = mode;
        settings.UseBeta = useBeta;
        EXPECT_EQ(missingHelpersNote(settings).toStdString(), note);
    }
}

} // namespace
