// What is found in a plug-in folder, and the menu made of it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/fixtures.h"
#include "plugin/host/plugin_menu.h"

#include <QTemporaryDir>

TEST(PluginCatalogue, ListsTheLibrariesOfTheFolderByName) {
    const QTemporaryDir folder;
    const QString place = folder.path() + "/";
    for (const char* name :
         {"blank_name", "data_for_functions", "dotted_name", "long_name", "no_name", "null_name",
          "scripted", "throwing_name", "unknown_function"})
        addPlugin(place, name);
    writeFile(place + "empty.so", "");
    writeFile(place + "<i>.so", "text");
    writeFile(place + "scripted.txt", contentOf(fixture("scripted")));
    ASSERT_TRUE(QFile::link(fixture("scripted"), place + "link.so"));
    addPlugin(place + "below.so/", "scripted");

    const PluginCatalogue catalogue = readPlugins(place);
    ASSERT_EQ(catalogue.plugins.size(), 4u);
    EXPECT_EQ(catalogue.refused.join('|').toStdString(),
              "<i>.so: It is not a shared library.|empty.so: The file is empty.|"
              "unknown_function.so: undefined symbol: tOfALaterVersion");
    const PluginDescription& scripted = catalogue.plugins[3];
    EXPECT_EQ(scripted.path, place + "scripted.so");
    EXPECT_EQ(scripted.author, "A & B");
    EXPECT_EQ(scripted.helpPath(), place + "scripted.html");
    EXPECT_EQ(catalogue.plugins[0].author, "") << "no function";
    EXPECT_EQ(catalogue.plugins[1].helpPath(), "");

    QStringList texts;
    const std::vector<PluginMenuRow> rows = pluginMenuRows(catalogue, place);
    for (const PluginMenuRow& row : rows)
        texts << row.text.left(20) + QString::number(row.index);
    EXPECT_EQ(texts.join('|'), "-1|Data...0|Dotted...1|A long name xxxxxxxx2|Scripted...3|"
                               "3 libraries can't be-1");
    EXPECT_EQ(rows[3].text.size(), 103);
    EXPECT_EQ(rows[4].toolTip, "<p>Follows <a href=\"script.html\">its script</a></p>"
                               "<p>Author: A &amp; B</p>");
    EXPECT_TRUE(
        rows[5].toolTip.startsWith("<p>&lt;i&gt;.so: It is not a shared library.</p><p>empty"));
}

TEST(PluginCatalogue, SaysWhatIsMissing) {
    const PluginCatalogue none = readPlugins("/no/such/folder/");
    EXPECT_TRUE(none.plugins.empty() && none.refused.isEmpty());
    PluginCatalogue catalogue;
    catalogue.refused << "one.so: <bad>";
    std::vector<PluginMenuRow> rows = pluginMenuRows(catalogue, "/plugins/");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].text, "<No plug-ins>");
    EXPECT_TRUE(rows[0].toolTip.contains("/plugins/"));
    EXPECT_EQ(rows[1].text, "1 library can't be used");
    EXPECT_EQ(rows[1].toolTip, "<p>one.so: &lt;bad&gt;</p>");
    for (int i = 0; i < 19; ++i)
        catalogue.refused << "more";
    rows = pluginMenuRows(catalogue, "/plugins/");
    EXPECT_TRUE(rows[1].toolTip.endsWith("<p>And 8 more.</p>"));
    catalogue.plugins = {{"/p/a.so", "A", "x < y", "", ""}};
    EXPECT_EQ(pluginMenuRows(catalogue, "/p/")[1].toolTip, "<p>x &lt; y</p>");
}

TEST(PluginCatalogue, LinksAreRelativeToTheLibrary) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"see <a href=\"x\">x</a>", "/p/a.so", "see <a href=\"x\">x</a>"},
        {"see <a href=\"x\">x</a> <a href=\"y\">", "/p/q/a.so",
         "see <a href=\"/p/q/x\">x</a> <a href=\"/p/q/y\">"},
        {"no link", "/p/q/a.so", "no link"}};
    for (const auto& [description, library, expected] : rows)
        for (const char* folder : {"/p/", "/p"})
            EXPECT_EQ(descriptionWithLinks(description, library, folder), expected);
}
