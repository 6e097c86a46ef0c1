// The dialogs of plug-ins, and the texts that they give back.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/fixtures.h"
#include "plugin/program_fixture.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

#include <QTextEdit>
#include <climits>
#include <cmath>

namespace {

/// Writes down what is shown and gives prepared answers.
class Operator : public UnattendedMessages {
public:
    Operator() : previous_(installMessageHandler(this)) {}
    ~Operator() override { installMessageHandler(previous_); }

    QStringList seen;
    bool accepts = true;
    QString answer;

    void show(MessageLevel level, const QString& text, const QString& title) override {
        seen << QString("%1 %2: %3").arg(QString::number(int(level)), title, text);
    }
    bool ask(const QString& text, const QString& title, DefaultAnswer) override {
        seen << title + ": " + text;
        return accepts;
    }
    std::optional<int> inputInteger(const InputTexts& texts, int start,
                                    const IntegerBounds& bounds) override {
        note(texts, start, bounds.minimum, bounds.maximum);
        return accepts ? std::optional(start) : std::nullopt;
    }
    std::optional<double> inputNumber(const InputTexts& texts, double start,
                                      const NumberBounds& bounds) override {
        note(texts, start, bounds.minimum, bounds.maximum);
        seen.last() += QString(" to %1").arg(bounds.decimals);
        return accepts ? std::optional(start) : std::nullopt;
    }
    std::optional<QString> inputText(const InputTexts& texts, const QString& start) override {
        seen << texts.title + ": " + texts.text + " " + start;
        return accepts ? std::optional(answer) : std::nullopt;
    }
    QString waitForFileToOpen(const QString& title, const QString& place,
                              const QString& filter) override {
        seen << "open " + title + ": " + place + " " + filter;
        return accepts ? answer : QString();
    }
    QString waitForFileToSave(const QString& title, const QString& place,
                              const QString& filter) override {
        seen << "save " + title + ": " + place + " " + filter;
        return accepts ? answer : QString();
    }

private:
    void note(const InputTexts& texts, double start, double minimum, double maximum) {
        seen << QString("%1: %2 %3 in %4..%5")
                    .arg(texts.title, texts.text)
                    .arg(start, 0, 'g', 10)
                    .arg(minimum, 0, 'g', 10)
                    .arg(maximum, 0, 'g', 10);
    }
    MessageHandler* previous_;
};

using Buffer = std::array<char, veloCortivoTextSize + 1>;

} // namespace

class PluginDialogs : public PluginProgram {
protected:
    Operator operatorHand;
    QStringList& seen = operatorHand.seen;
};

TEST_F(PluginDialogs, AskForNumbersWithinTheirBounds) {
    struct Case {
        int start, min, max, accepted, cancelled;
        QStringList seen;
    };
    const QString title = "Velo-Cortivo Plugin: ";
    for (const Case& c : {Case{5, 1, 9, 5, 0, {title + "n 5 in 1..9", title + "x 5 in 1..9 to 3"}},
                          {-3, 1, 9, 1, 0, {title + "n 1 in 1..9", title + "x 1 in 1..9 to 3"}},
                          {12, 1, 9, 9, 0, {title + "n 9 in 1..9", title + "x 9 in 1..9 to 3"}},
                          {5, 3, 2, 2, 2, {}}}) {
        SCOPED_TRACE(c.start);
        for (const bool accepts : {true, false}) {
            seen.clear();
            operatorHand.accepts = accepts;
            const int expected = accepts ? c.accepted : c.cancelled;
            EXPECT_EQ(tGetIntegerInput("n", c.start, c.min, c.max), expected);
            EXPECT_EQ(tGetFloatInput("x", float(c.start), float(c.min), float(c.max)),
                      float(expected));
            EXPECT_EQ(seen, c.seen);
        }
    }
    EXPECT_EQ(tGetIntegerInput("n", 0, INT_MIN, 0), INT_MAX) << "as in the machine";
    EXPECT_TRUE(std::isnan(tGetFloatInput("x", 0, std::nanf(""), 1)));
}

TEST_F(PluginDialogs, TellAndAsk) {
    tLogText("without a window");
    tLogText(nullptr);
    tMessageBox("Gr\xc3\xbc\xc3\x9f");
    EXPECT_TRUE(tYesNoMessageBox("Go?"));
    operatorHand.accepts = false;
    EXPECT_FALSE(tYesNoMessageBox(nullptr));
    EXPECT_EQ(seen, (QStringList{QString::fromUtf8("0 Velo-Cortivo Plugin: Gr\xc3\xbc\xc3\x9f"),
                                 "Velo-Cortivo Plugin: Go?", "Velo-Cortivo Plugin: "}));
}

TEST_F(PluginDialogs, LogIntoTheWindowOfThePlugin) {
    PluginScript& plugin = scriptOf(addPlugin(host.pluginFolder(), "scripted"));
    plugin.on["initPlugin"] = [] {
        tLogText("There is no window yet");
        return true;
    };
    beginProgram();
    host.discover();
    host.launch(0);
    const auto* text = window.findChild<QTextEdit*>("LogTxt");
    ASSERT_TRUE(text);
    EXPECT_EQ(text->toPlainText(), "");
    // As they are, but not beyond the size that the interface states.
    const QString umlauts = QString::fromUtf8("\xc3\xbc").repeated(3000);
    for (const auto& [given, shown] :
         {std::pair<std::string, QString>("a < b, <b>c</b> &lt;", "a < b, <b>c</b> &lt;"),
          {"<p>two</p>\n lines", "<p>two</p>\n lines"},
          {"no \xff letter", QString("no ") + QChar(QChar::ReplacementCharacter) + " letter"},
          {umlauts.toStdString(), umlauts.left(2047)}}) {
        tLogText(given.c_str());
        EXPECT_TRUE(("\n" + text->toPlainText()).endsWith("\n" + shown)) << shown.toStdString();
    }
    host.close();
}

TEST_F(PluginDialogs, ChooseFilesFromTheFolderThatWasUsedLast) {
    using Function = decltype(&tGetOpenFileName);
    beginProgram();
    Buffer out;
    for (const auto& [function, kind] :
         {std::pair<Function, QString>(tGetOpenFileName, "open"), {tGetSaveFileName, "save"}}) {
        SCOPED_TRACE(kind.toStdString());
        host.setLastUsedFolder("/used/");
        seen.clear();
        operatorHand.accepts = true;
        operatorHand.answer = "/maps/one.map";
        EXPECT_TRUE(function("Maps", "", "Maps (*.map)", out.data()));
        EXPECT_STREQ(out.data(), "/maps/one.map");
        EXPECT_EQ(host.lastUsedFolder(), "/maps/");
        EXPECT_TRUE(function("Maps", "two.map", "", nullptr));
        operatorHand.accepts = false;
        EXPECT_FALSE(function(nullptr, "/other/three.map", nullptr, out.data()));
        EXPECT_STREQ(out.data(), "");
        EXPECT_EQ(host.lastUsedFolder(), "/maps/");
        EXPECT_EQ(seen,
                  (QStringList{kind + " Maps: /used/ Maps (*.map)", kind + " Maps: /maps/two.map ",
                               kind + " Velo-Cortivo Plugin: /other/three.map "}));
    }
}

TEST_F(PluginDialogs, CutLongTextsBetweenCharacters) {
    constexpr size_t most = veloCortivoTextSize - 1;
    const QString umlaut = QString::fromUtf8("\xc3\xbc"),
                  face = QString::fromUtf8("\xf0\x9f\x98\x80");
    struct Case {
        QString text;
        size_t bytes;
    };
    for (const Case& c : {Case{QString(qsizetype(most), 'a'), most},
                          {QString(5000, 'a'), most},
                          {umlaut.repeated(3000), most - 1},
                          {"a" + umlaut.repeated(3000), most},
                          {QString::fromUtf8("\xe2\x82\xac").repeated(4000), most},
                          {QString(qsizetype(most - 1), 'a') + face, most - 1},
                          {face.repeated(3000), most - 3}}) {
        Buffer out;
        out.fill('#');
        operatorHand.answer = c.text;
        EXPECT_TRUE(tGetTextInput("t", "d", out.data()));
        const std::string text = out.data();
        EXPECT_EQ(text.size(), c.bytes);
        EXPECT_TRUE(c.text.toStdString().starts_with(text));
        EXPECT_EQ(out[veloCortivoTextSize], '#');
    }
    operatorHand.accepts = false;
    Buffer out;
    out.fill('#');
    EXPECT_FALSE(tGetTextInput("t", nullptr, out.data()));
    EXPECT_STREQ(out.data(), "");
    EXPECT_EQ(seen.first(), "Velo-Cortivo Plugin: t d");
    EXPECT_EQ(seen.last(), "Velo-Cortivo Plugin: t ");
}
