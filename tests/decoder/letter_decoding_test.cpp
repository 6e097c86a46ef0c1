// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoding_log.h"
#include "decoder/letter_decoder.h"

#include "support/expected_table.h"

#include <algorithm>
#include <cmath>

namespace {

// Curves, references and weights are those of make_letters_expected.py, in which they are written
// once more.

class Noise {
public:
    explicit Noise(int seed) : state_(uint32_t(seed)) {}
    int next(int count) {
        state_ = (state_ * 1103515245u + 12345u) & 0x7fffffffu;
        return int(state_ >> 12) % count;
    }

private:
    uint32_t state_;
};

enum Oddity {
    ConstantROI = 1,
    ZeroBase = 2,
    EqualReferences = 4,
    FlatReference = 8,
    EqualROIs = 16,
    AllConstant = 32
};

struct Case {
    int seed = 0;
    DecoderSettings settings;
    int letter = 0;
    int signal = 0;    ///< first point of the response
    int available = 0; ///< volumes
    int nrOfROIs = 0;
    int oddities = 0;
    Cells expected; ///< the other cells
};

TaskWeights weightsOf(const QByteArray& kind, int seed) {
    if (kind == "own")
        return {{{1}, {0, 1}, {0, 0, 1}}};
    Noise noise(seed);
    TaskWeights weights;
    for (auto& row : weights)
        for (float& weight : row)
            weight = float(noise.next(100) - (kind == "signed" ? 50 : 0));
    if (kind == "equal")
        weights[1] = weights[2] = weights[0];
    if (kind == "norow")
        weights[1].fill(0.0f);
    return scaledWeights(weights);
}

Case caseOf(const Cells& cells) {
    Case c;
    int column = 0;
    DecoderSettings& s = c.settings;
    for (int* field :
         {&c.seed, &s.FullWindowSize, &s.SkipAtBeginOfWindow, &s.SkipAtEndOfWindow,
          &s.IdealResponseWindowSize, &s.SkipTimePointsAtBegin, &s.MeanForPercSignalFrom,
          &s.MeanForPercSignalTo, &c.letter, &c.signal, &s.NrOfTimePoints, &c.available})
        *field = cells[column++].toInt();
    s.HelperVOIsMode = HelperVOIs(cells[column++].toInt());
    for (bool* field : {&s.UseCorr, &s.UseBeta, &s.ABCDMode})
        *field = cells[column++] == "1";
    s.CorrBetaTau = cells[column++].toFloat();
    c.nrOfROIs = cells[column++].toInt();
    s.TaskVOIWeights = weightsOf(cells[column++], c.seed + 2);
    c.oddities = cells[column++].toInt();
    c.expected = cells.mid(column);
    return c;
}

std::vector<Case> casesOf(const QByteArray& kind) {
    std::vector<Case> cases;
    for (const Cells& cells : expectedLines("decoder/expected_letters.tsv", kind))
        cases.push_back(caseOf(cells));
    return cases;
}

ReferenceCurves referencesOf(const Case& c) {
    const auto points = size_t(c.settings.IdealResponseWindowSize);
    Noise noise(c.seed);
    ReferenceCurves references;
    for (std::vector<float>& reference : references)
        for (size_t i = 0; i < points; ++i)
            reference.push_back(float(noise.next(1000)) / 8.0f);
    if (c.oddities & EqualReferences) {
        references[1] = references[0];
        references[6] = references[2];
    }
    if (c.oddities & FlatReference)
        references[4].assign(points, 0.1f);
    return references;
}

ROICurves curvesOf(const Case& c, const ReferenceCurves& references) {
    Noise noise(c.seed + 1);
    const std::vector<float>& response = references[size_t(c.seed % 9)];
    const float scale = (c.seed % 2 == 0 ? 1.0f : -1.0f) / 8.0f;
    ROICurves curves;
    curves.fill(std::vector<float>(size_t(c.available), 0.5f));
    for (int roi = 0; roi < c.nrOfROIs; ++roi)
        for (int t = 0; t < c.available; ++t) {
            float& value = curves[size_t(roi)][size_t(t)];
            value = float(400 + 60 * roi + noise.next(41));
            const int point = t - c.signal;
            if (roi % 3 == c.seed % 3 && point >= 0 && point < int(response.size()))
                value += scale * response[size_t(point)];
        }
    if (c.oddities & ConstantROI)
        std::ranges::fill(curves[1], 0.1f);
    if (c.oddities & ZeroBase)
        for (int i = c.settings.MeanForPercSignalFrom; i <= c.settings.MeanForPercSignalTo; ++i)
            if (c.signal + i < c.available)
                curves[2][size_t(c.signal + i)] = 0.0f;
    if (c.oddities & EqualROIs)
        curves.fill(std::vector<float>(curves[0]));
    if (c.oddities & AllConstant)
        curves.fill(std::vector<float>(size_t(c.available), 1234.567f));
    return curves;
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

/// Numbers that cancel have the errors of what they are made of.
void expectNumbers(const std::vector<double>& numbers, const Cells& expected) {
    ASSERT_EQ(numbers.size(), size_t(expected.size()));
    double greatest = 0.0;
    for (size_t i = 0; i < numbers.size(); ++i) {
        const double number = expected[qsizetype(i)].toDouble();
        if (i % 9 == 0) {
            greatest = 0.0;
            for (qsizetype j = qsizetype(i); j < std::min(qsizetype(i) + 9, expected.size()); ++j)
                greatest = std::max(greatest, std::fabs(expected[j].toDouble()));
        }
        EXPECT_NEAR(numbers[i], number, 1e-5 * std::max(std::fabs(number), 0.1 * greatest)) << i;
    }
}

TEST(LetterDecoding, GivesWhatTheFormulasGive) {
    const std::vector<Case> cases = casesOf("window");
    ASSERT_EQ(cases.size(), 210u);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.seed);
        const ReferenceCurves references = referencesOf(c);
        const auto decoding =
            decodeLetter(c.settings, references, curvesOf(c, references), c.letter);
        ASSERT_EQ(decoding.has_value(), !c.expected.isEmpty());
        if (!decoding)
            continue;
        EXPECT_EQ(lettersOf(*decoding), c.expected[0]);
        QByteArray best;
        for (const int reference : decoding->bestReference)
            best += QByteArray::number(reference);
        EXPECT_EQ(best, c.expected[1]);
        expectNumbers(numbersOf(decodingLog(c.settings, *decoding)), c.expected.mid(2));
    }
}

TEST(LetterDecoder, FollowsARunAndTheOperator) {
    const std::vector<Case> cases = casesOf("stream");
    ASSERT_EQ(cases.size(), 40u);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.seed);
        const ReferenceCurves references = referencesOf(c);
        const ROICurves curves = curvesOf(c, references);
        DecoderSettings settings = c.settings;
        settings.NrOfLetters = c.letter;
        const bool live = c.expected[0] == "1";
        LetterDecoder decoder;
        decoder.begin(settings, references,
                      live ? LetterDecoder::Source::Run : LetterDecoder::Source::File);
        const auto decodeIf = [&](bool isDue, const ROICurves& soFar) {
            return isDue ? decoder.decode(soFar) : std::nullopt;
        };
        const auto handle = [&](char event) -> std::optional<LetterDecoding> {
            ROICurves soFar = curves;
            switch (event) {
            case 'v':
                if (live)
                    for (std::vector<float>& curve : soFar)
                        curve.resize(size_t(decoder.currentVolume() + 2));
                return decodeIf(decoder.takeVolume(decoder.currentVolume() + 1), soFar);
            case 'e':
                return decodeIf(decoder.endRun(), curves);
            case 'n':
                decoder.goToNextLetter();
                return decoder.decode(curves);
            case 'p':
                decoder.goToPreviousLetter();
                return decoder.decode(curves);
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
        int step = 0, count = 0;
        for (const char event : c.expected[1]) {
            if (event >= '0' && event <= '9') {
                count = 10 * count + event - '0';
                continue;
            }
            for (; count > 0; --count, ++step)
                if (const auto decoding = handle(event))
                    steps << QByteArray::number(step) + ':' +
                                 QByteArray::number(decoder.currentLetter()) + ':' +
                                 lettersOf(*decoding);
        }
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
        EXPECT_EQ(decoder.references(), references);
        EXPECT_EQ(decoder.currentLetter() + decoder.currentVolume(), -2);
        EXPECT_TRUE(decoder.decodedText(0).isEmpty() && !decoder.latest());
    }
}

TEST(LetterDecoder, NeedsFittingReferencesAndROIs) {
    const Case c = casesOf("window").front();
    ReferenceCurves references = referencesOf(c);
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
    EXPECT_FALSE(decoder.decode(curvesOf(c, references)));
    EXPECT_FALSE(decoder.takeVolume(0));
    EXPECT_EQ(decoder.currentVolume(), -1);
}

TEST(LetterDecoding, TheBaseIsOfPointsThatAreCompared) {
    DecoderSettings settings;
    settings.MeanForPercSignalFrom = 1;
    settings.MeanForPercSignalTo = 5;
    const std::vector<float> window{3, 2, 6};
    EXPECT_EQ(percentSignal(settings, std::span(window).first(2)), (std::vector<float>{150, 100}));
    EXPECT_EQ(percentSignal(settings, std::span(window).first(1)), (std::vector<float>{3}));
    settings.SkipAtEndOfWindow = settings.FullWindowSize - settings.SkipAtBeginOfWindow - 2;
    EXPECT_EQ(percentSignal(settings, window), (std::vector<float>{150, 100, 300}));
    EXPECT_FALSE(decoderSettingsFault(settings).isEmpty());
    settings.MeanForPercSignalTo = 1;
    EXPECT_TRUE(decoderSettingsFault(settings).isEmpty());
}

TEST(DecoderSettings, SayWhichHelpersAreMissing) {
    const struct {
        int nrOfROIs;
        HelperVOIs mode;
        bool useBeta;
        const char* note;
    } cases[] = {
        {3, HelperVOIs::Both, true,
         "Helper ROIs 1 to 3 are missing: the shape of their tasks counts half"},
        {4, HelperVOIs::OnlyHelpers, true,
         "Helper ROIs 2 to 3 are missing: the shape of their tasks counts as 0"},
        {5, HelperVOIs::Both, true, "Helper ROI 3 is missing: the shape of its task counts half"},
        {6, HelperVOIs::Both, true, ""},
        {3, HelperVOIs::OnlyTasks, true, ""},
        {3, HelperVOIs::OnlyHelpers, false, ""}};
    for (const auto& [nrOfROIs, mode, useBeta, note] : cases) {
        DecoderSettings settings;
        settings.NrOfDataROIs = nrOfROIs;
        settings.HelperVOIsMode = mode;
        settings.UseBeta = useBeta;
        EXPECT_EQ(missingHelpersNote(settings).toStdString(), note);
    }
}

TEST(LetterDecoding, ASlopeHasItsConstant) {
    const std::vector<float> curve{5, 7, 6, 10}, reference{2, 3, 4, 5},
        flat{0.1f, 0.1f, 0.1f, 0.1f};
    const std::tuple<std::span<const float>, float, float> cases[] = {
        {reference, 1.4f, 2.1f},
        {std::span(reference).first(3), 0.5f, 4.5f},
        {flat, 0.0f, 7.0f},
        {{}, 0.0f, 0.0f}};
    for (const auto& [against, slope, constant] : cases) {
        const LetterFit fit = fitGLMForLetter(curve, against);
        EXPECT_FLOAT_EQ(fit.slope, slope);
        EXPECT_FLOAT_EQ(fit.constant, constant);
    }
}

} // namespace
