// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/settings_file_names.h"

#include <QStringList>
#include <gtest/gtest.h>

TEST(SettingsFileNames, NameNeighbours) {
    for (const auto& [name, step, neighbour] :
         std::vector<std::tuple<QString, int, QString>>{{"a-b.c-09.vco", 1, "a-b.c-10.vco"},
                                                        {"run-9", 1, "run-10.vco"},
                                                        {"run-1.vco", -1, "run-0.vco"},
                                                        {"run-0.vco", -1, ""},
                                                        {"-3.vco", 1, "-4.vco"},
                                                        {".a-3", 1, ""},
                                                        {"run3.vco", 1, ""},
                                                        {"run-.vco", 1, ""},
                                                        {"", 1, ""},
                                                        {"run-2147483647.vco", 1, ""}})
        EXPECT_EQ(neighbourName(name, step), neighbour) << name.toStdString();
}

TEST(SettingsFileNames, CountUpToTheFirstGap) {
    const QStringList files{"/s/r-1.vco", "/s/r-2.vco", "/s/r-9.vco"};
    const auto isFile = [&](const QString& path) { return files.contains(path); };
    for (const auto& [name, count] : std::vector<std::pair<QString, int>>{
             {"r-9.vco", 2}, {"r-77.vco", 2}, {"q-1.vco", 0}, {"r1.vco", 0}, {"r-1", 0}})
        EXPECT_EQ(countRecordings("/s/", name, isFile), count) << name.toStdString();
}
