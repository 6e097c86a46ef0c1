// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_curve.h"
#include "feedback/frames/frame_painting.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <gtest/gtest.h>

namespace {

using Kind = FeedbackFrame::Kind;

FeedbackFrame thermometerFrame(std::vector<FeedbackFrame::Thermometer> thermometers,
                               int baseLevel) {
    FeedbackFrame frame;
    frame.kind = Kind::Thermometer;
    frame.thermometers = std::move(thermometers);
    frame.baseLevel = baseLevel;
    return frame;
}

QImage painted(const FeedbackFrame& frame, QSize size) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::magenta);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(QFont(QGuiApplication::font().family(), 40));
    paintFeedbackFrame(painter, size, frame);
    return picture;
}

/// One letter for each colour of a frame; "?" for any other.
char colorLetter(QRgb color) {
    const std::map<QRgb, char> letters = {{qRgb(0, 0, 0), 'k'},       {qRgb(255, 255, 255), 'w'},
                                          {qRgb(200, 200, 200), 'g'}, {qRgb(200, 200, 0), 'o'},
                                          {qRgb(255, 0, 0), 'r'},     {qRgb(255, 255, 0), 'y'},
                                          {qRgb(0, 0, 50), 'b'}};
    const auto found = letters.find(color | 0xff000000U);
    return found == letters.end() ? '?' : found->second;
}

/// Compares "x,y colour" entries, separated by ";", with the picture.
void expectPoints(const QImage& picture, const QString& points, const std::string& name) {
    for (const QString& entry : points.split(';', Qt::SkipEmptyParts)) {
        const QStringList parts = entry.simplified().replace(',', ' ').split(' ');
        ASSERT_EQ(parts.size(), 3) << entry.toStdString();
        const QPoint at(parts[0].toInt(), parts[1].toInt());
        EXPECT_EQ(colorLetter(picture.pixel(at)), parts[2][0].toLatin1())
            << name << " at " << entry.toStdString();
    }
}

/// The rectangle of all pixels of an area that are not of the ground.
QRect inkIn(const QImage& picture, const QRect& area, QRgb ground) {
    QRect ink;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            if (picture.pixel(x, y) != ground)
                ink |= QRect(x, y, 1, 1);
    return ink;
}

} // namespace

// A pen of 2 pixels covers the coordinate and the one before it, one of 3 also the one after it.
TEST(FeedbackFramePainting, BoxesLevelsBaseLineAndTargetStandWhereTheyBelong) {
    FeedbackFrame classifier = thermometerFrame({{-2, 0}}, 5);
    classifier.kind = Kind::Classifier;
    FeedbackFrame empty = thermometerFrame({{4, 8}}, 3);
    empty.levelsShown = false;
    FeedbackFrame arrow = thermometerFrame({{0, 7}}, 0);
    arrow.arrowMode = arrow.arrowShown = true;
    FeedbackFrame hiddenArrow = arrow, curve = arrow;
    hiddenArrow.arrowShown = false;
    curve.kind = Kind::TimeCourse;
    const QSize small(400, 300); // boxes of 32 x 24, the left edge at 184
    const QSize odd(643, 487);   // 55 x 42, at 294, or 187 and 401
    const QSize large(900, 700); // 82 x 64, at 409, or 259 and 559
    struct Case {
        const char* name;
        QSize size;
        FeedbackFrame frame;
        const char* points;
    };
    const Case cases[] = {
        {"above", small, thermometerFrame({{4, 8}}, 3),
         // Border.
         "0,150 w; 1,150 k; 399,150 w; 398,150 w; 397,150 k; 100,0 w; 100,1 k; 100,299 w;"
         "100,298 w; 100,297 k;"
         // Outlines: the first and the last box, left and right.
         "200,9 k; 200,10 w; 200,11 w; 200,12 k; 200,22 k; 182,23 k; 183,23 w; 184,23 w; 185,23 k;"
         "214,23 k; 215,23 w; 216,23 w; 217,23 k; 200,226 w; 200,227 w; 200,228 k; 200,240 k;"
         "200,250 w; 200,251 w; 200,252 k;"
         // Four boxes from the base line at 179.
         "200,157 k; 200,158 g; 200,176 g; 200,177 k; 185,166 k; 186,166 g; 212,166 g; 213,166 k;"
         "200,156 w; 200,155 w; 200,154 w; 200,153 k; 200,132 w; 200,133 k; 200,85 k; 200,86 g; "
         "200,104 g; 200,80 k;"
         "200,62 k; 200,200 k;"
         // Base line.
         "177,179 k; 178,179 o; 222,179 o; 174,179 k; 226,179 k; 200,178 o; 200,180 o; 200,181 k;"
         // Target.
         "200,57 k; 200,58 r; 200,59 r; 200,60 r; 200,61 k; 200,82 r; 200,83 r; 183,71 r; 185,71 r;"
         "186,71 k; 215,71 r; 217,71 r; 218,71 k"},
        {"below", odd, thermometerFrame({{-3, 10}}, 6),
         "320,181 k; 320,182 g; 320,218 g; 320,219 k; 295,200 k; 296,200 g; 345,200 g; 346,200 k;"
         "320,224 g; 320,265 k; 320,266 g; 320,302 g; 320,303 k; 320,307 k; 320,160 k;"
         "320,179 o; 320,222 w; 320,11 r; 320,53 r; 320,32 k; 294,32 r; 349,32 r; 642,200 w;"
         "320,485 w; 320,486 w"},
        {"far above and below", large, thermometerFrame({{99, -99}, {-99, 1}}, 3),
         "300,13 k; 300,14 g; 300,491 k; 300,78 g; 300,20 g; 300,480 k; 600,30 k; 600,465 g;"
         "600,590 g; 600,648 g; 600,649 k; 600,440 k; 258,40 w; 259,40 w; 341,40 w; 260,40 k; "
         "558,40 w;"
         "641,40 w; 255,459 o; 346,459 o; 555,459 o; 646,459 o; 600,587 r; 600,651 r; 300,587 w;"
         "559,620 r; 899,300 w; 450,300 k"},
        {"whole scale below", small, thermometerFrame({{-1, 0}}, 10),
         "200,11 o; 200,14 g; 200,32 g; 200,35 w; 200,47 k"},
        {"nothing above the top", small, thermometerFrame({{5, 0}}, 10), "200,20 k; 200,11 o"},
        {"no base line", small, thermometerFrame({{1, 0}}, 0),
         "176,251 k; 200,251 w; 200,230 g; 200,248 g; 200,249 k; 200,210 k"},
        {"level 0", small, thermometerFrame({{0, 0}}, 5), "200,140 k; 200,120 k; 200,131 o"},
        {"no level shown", small, empty, "200,166 k; 200,95 k; 200,179 o; 200,59 r; 200,155 w"},
        {"second of a pair", odd, thermometerFrame({{0, 3}, {2, 0}}, 0),
         "214,305 r; 428,305 w; 428,347 w; 428,392 g; 428,428 g; 428,350 g; 428,330 k; 214,410 k;"
         "400,400 w; 456,400 w; 401,400 w; 187,400 w; 242,400 w"},
        {"classifier", small, classifier,
         "399,150 k; 398,150 w; 397,150 w; 396,150 k; 100,299 k; 100,298 w; 184,23 w; 216,23 w;"
         "200,251 w; 200,131 o; 200,133 k; 200,134 g; 200,152 g; 200,158 g; 200,182 k; 200,120 k"},
        // Head of 8 pixels from the tip at 176, 95; a shaft of 8 that ends 36 behind the tip.
        {"arrow", small, arrow,
         "175,95 y; 177,95 k; 169,89 y; 169,101 y; 167,99 k; 156,92 y; 156,97 y; 156,89 k;"
         "156,101 k; 140,95 y; 139,95 k; 200,84 k; 200,83 w"},
        {"no arrow", small, hiddenArrow, "165,95 k; 200,83 w"},
        {"curve", small, curve, "0,0 k; 200,11 k; 399,299 k"},
        {"idle", small, {}, "0,0 b; 200,11 b; 399,299 b"},
    };
    for (const Case& c : cases)
        expectPoints(painted(c.frame, c.size), c.points, c.name);
}

TEST(FeedbackFramePainting, TextsStandOnTheirLines) {
    const QRgb black = qRgb(0, 0, 0);
    FeedbackFrame frame = thermometerFrame({{0, 0}}, 0);
    frame.instruction = "HHHH";
    frame.values = QStringList{"H", "H", "H", "H"};
    const QFontMetrics big(QFont(QGuiApplication::font().family(), 14, QFont::Bold));
    for (const Kind kind : {Kind::Thermometer, Kind::Classifier}) {
        frame.kind = kind;
        const int less = kind == Kind::Classifier ? 1 : 0;
        const QImage picture = painted(frame, {400, 300});
        const QRect ink = inkIn(picture, QRect(20, 253, 360, 43), black);
        EXPECT_EQ(ink.bottom() + 1, 300 - less - big.height() + 5);
        EXPECT_EQ(ink.height(), big.tightBoundingRect("HHHH").height());
        const int left = (400 - less) / 2 - big.horizontalAdvance("HHHH") / 2;
        EXPECT_NEAR(ink.left(), left + big.leftBearing('H'), 1);
        EXPECT_EQ(colorLetter(picture.pixel(ink.left() + 2, ink.top() + 3)), 'g');
        for (int line = 1; line <= 4; ++line) {
            const QRect value = inkIn(picture, QRect(3, line * 15 - 12, 100, 15), black);
            EXPECT_EQ(value.bottom() + 1, line * 15);
            EXPECT_NEAR(value.left(), 6, 1);
            EXPECT_LT(value.height(), 14); // the application's own font
        }
    }
    const QRect idle = inkIn(painted({}, {400, 300}), QRect(0, 0, 400, 300), qRgb(0, 0, 50));
    EXPECT_NEAR(idle.left(), 6, 1);
    EXPECT_NEAR(idle.bottom(), 17, 2); // "p" and "y" reach below the line
    EXPECT_GT(idle.width(), 100);
}

TEST(FeedbackFramePainting, AnySizeAndAnyNumbersAreDrawn) {
    FeedbackFrame frame = thermometerFrame({{INT_MAX, INT_MAX}, {INT_MIN, INT_MIN}}, 5);
    frame.instruction = "Rest";
    frame.arrowShown = true;
    QImage picture(300, 300, QImage::Format_RGB32);
    for (const QSize size : {QSize(), QSize(0, 0), QSize(0, 50), QSize(1, 1), QSize(2, 69),
                             QSize(47, 70), QSize(48, 70), QSize(56, 80)}) {
        picture.fill(Qt::magenta);
        QPainter painter(&picture);
        paintFeedbackFrame(painter, size, frame);
        painter.end();
        // Nothing is drawn outside, or inside where there is no room for boxes.
        EXPECT_EQ(picture.pixelColor(std::max(size.width(), 0), 20), QColor(Qt::magenta));
        EXPECT_EQ(picture.pixelColor(20, std::max(size.height(), 0)), QColor(Qt::magenta));
    }
}

TEST(FeedbackFrame, ShowsWhatTheChoicesAndTheVolumeAskFor) {
    struct Case {
        bool suppressed, pair, classifier, blocked, arrowMode;
        std::vector<FeedbackFrame::Thermometer> thermometers;
        bool levelsShown, arrowShown;
    };
    const Case cases[] = {
        {0, 0, 0, 0, 0, {{-2, 7}}, 1, 0},         {0, 0, 0, 1, 0, {{-2, 7}}, 0, 0},
        {1, 0, 0, 0, 0, {{-2, 7}}, 0, 0},         {1, 1, 0, 0, 0, {{-2, 7}, {6, 8}}, 1, 0},
        {0, 1, 0, 1, 0, {{-2, 7}, {6, 8}}, 0, 0}, {1, 0, 1, 0, 1, {{-2, 0}}, 1, 0},
        {0, 0, 1, 1, 0, {{-2, 0}}, 0, 0},         {0, 0, 0, 0, 1, {{-2, 7}}, 1, 1},
        {0, 0, 0, 1, 1, {{-2, 7}}, 0, 0},         {1, 0, 0, 0, 1, {{-2, 7}}, 0, 0},
    };
    for (const Case& c : cases) {
        FeedbackChoices choices{.BlockOutput = c.blocked, .DisplayBaseLevel = 11};
        choices.ArrowMode = c.arrowMode;
        FeedbackValues values{.live = true,
                              .noFeedback = c.suppressed,
                              .pair = c.pair,
                              .classifier = c.classifier,
                              .FbLevel1 = -2,
                              .FbLevel2 = 6,
                              .TargetLevel = 7,
                              .TargetLevel2 = 8};
        FeedbackFrame expected = thermometerFrame(c.thermometers, 10);
        expected.kind = c.classifier ? Kind::Classifier : Kind::Thermometer;
        expected.levelsShown = c.levelsShown;
        expected.arrowMode = c.arrowMode && !c.classifier;
        expected.arrowShown = c.arrowShown;
        EXPECT_EQ(feedbackFrame(values, choices, {}, {}), expected) << &c - cases;
        choices.ArrowLevel = 0;
        EXPECT_FALSE(feedbackFrame(values, choices, {}, {}).arrowShown);
        choices.type = FeedbackType::TimeCourse;
        EXPECT_EQ(feedbackFrame(values, choices, {}, {}).kind,
                  c.classifier ? Kind::Classifier : Kind::TimeCourse);
        values.live = false;
        EXPECT_EQ(feedbackFrame(values, choices, {}, {}), FeedbackFrame());
    }
}

TEST(FeedbackFrame, TheInstructionStandsForOneVolumeBeforeItsCondition) {
    VolumeTables tables;
    tables.VolumeConditionIndex = {0, 1, 1, 1, 0, 2, 3};
    tables.VolumeTablesReady = true;
    const QStringList names = {"Rest", "Press_Left_Hand_3_4", "Press_Left_3"};
    const QStringList expected = {"Press Left Hand", "", "", "Rest", "Press", "", ""};
    FeedbackChoices choices;
    FeedbackValues values{.live = true};
    const auto instruction = [&](int volume) {
        values.volume = volume;
        return feedbackFrame(values, choices, tables, names).instruction;
    };
    for (int volume = 0; volume < 7; ++volume)
        EXPECT_EQ(instruction(volume), expected[volume]) << volume;
    EXPECT_EQ(instruction(-1), "");
    EXPECT_EQ(instruction(100), "");
    choices.ShowConditionNameAsInstruction = false;
    EXPECT_EQ(instruction(0), "");
    choices.ShowConditionNameAsInstruction = true;
    tables.VolumeTablesReady = false;
    EXPECT_EQ(instruction(0), "");
}

TEST(FeedbackFrame, TheNumbersOfOneAndOfTwoThermometers) {
    FeedbackValues values{.live = true,
                          .CurValue1 = 1234567.0f,
                          .CurValue2 = 12.5f,
                          .Baseline1 = 1000.25f,
                          .FbLevel1 = -3,
                          .FbLevel2 = 12,
                          .TargetLevel = 7,
                          .TargetLevel2 = -99};
    FeedbackChoices choices;
    EXPECT_EQ(feedbackFrame(values, choices, {}, {}).values, QStringList());
    choices.ShowValues = true;
    EXPECT_EQ(
        feedbackFrame(values, choices, {}, {}).values,
        QStringList({"Baseline: 1000.25", "CurValue: 1.23457e+06", "FbLevel:  -3", "TrgLevel: 7"}));
    values.pair = true;
    EXPECT_EQ(feedbackFrame(values, choices, {}, {}).values,
              QStringList({"Baselines: 1000.25 0", "CurValues: 1.23457e+06 12.5",
                           "FbLevels:  -3 12", "TrgLevels: 7 -99"}));
    values.pair = false;
    values.classifier = true;
    EXPECT_EQ(feedbackFrame(values, choices, {}, {}).values,
              QStringList({"Baseline: 0", "CurValue: 1.23457e+06", "FbLevel:  -3", "TrgLevel: 0"}));
}

TEST(FeedbackCurve, IsOfOneRegionOrTheMeanUpToTheCurrentVolume) {
    const std::vector<float> first = {1, 2, 3, 4}, second = {3, 5, 7, 9}, third = {8, 8, 2};
    const VolumeTables tables;
    FeedbackSignals signals{.currentVolume = 2, .nrOfVolumes = 4, .tables = tables};
    signals.curves = {first, second, third};
    struct Case {
        int mode;
        int region;
        std::vector<float> values;
    };
    for (const Case& c : {Case{useROI2, 1, {3, 5, 7}}, Case{useROI1And2, 0, {2, 3.5f, 5}},
                          Case{useROI2And3, 0, {5.5f, 6.5f, 4.5f}},
                          Case{useROI1And2And3, 0, {4, 5, 4}}, Case{noROIMode, 0, {}}}) {
        const FeedbackCurve curve = feedbackCurve(signals, {.roiMode = c.mode});
        EXPECT_EQ(curve.region, c.region) << c.mode;
        EXPECT_EQ(curve.values, c.values) << c.mode;
    }
    signals.currentVolume = 9;
    EXPECT_EQ(feedbackCurve(signals, {.roiMode = useROI1}).values, first);
    EXPECT_EQ(feedbackCurve(signals, {.roiMode = useROI3}).values, third);
    const FeedbackCurve blocked = feedbackCurve(signals, {.roiMode = useROI3, .BlockOutput = true});
    EXPECT_TRUE(blocked.region == 2 && blocked.values.empty()) << "no output to the subject";
    signals.currentVolume = -1;
    EXPECT_TRUE(feedbackCurve(signals, {.roiMode = useROI1}).values.empty());
    signals.curves.pop_back();
    EXPECT_TRUE(feedbackCurve(signals, {.roiMode = useROI1And3}).values.empty());
}
