// Settings files in a temporary folder, with scripted messages and intercepted program ends.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/settings_file.h"
#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"

#include <QTemporaryDir>

class SettingsFile : public testing::Test {
protected:
    SettingsFile() {
        settings.settingsFilePath = folder.filePath("run-1.vco");
        QDir(folder.path()).mkdir("in");
    }
    QString dir() const { return folder.path() + '/'; }

    void write(const QString& name, const QString& text) const {
        writeFile(folder.filePath(name), text.toUtf8());
    }
    bool readText(const QString& text, SettingsUse use) {
        write("run-1.vco", text);
        return readSettingsFile(settings, use, [this] { ++timerStops; });
    }

    [[nodiscard]] QString writtenText() const { return contentOf(settings.settingsFilePath); }

    /// A file as an operator writes it.
    static QString operatorText(const char* name) {
        return corpusText(QString("settings/%1.vco").arg(name));
    }
    static QString geText() { return operatorText("pfile"); }
    static QString replaced(QString text, const QString& before, const QString& after) {
        EXPECT_TRUE(text.contains(before)) << before.toStdString();
        return text.replace(before, after);
    }

    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgramEnd programEnd;
    RunSettings settings = defaultRunSettings();
    int timerStops = 0;
};
