// Files that are no libraries, and objects that are no plug-ins.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/fixtures.h"
#include "plugin/host/library_file.h"
#include "plugin/host/plugin_library.h"
#include "plugin/host/plugin_object.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <limits>
#include <link.h>
#include <sys/stat.h>

namespace {

using FileHeader = ElfW(Ehdr);
using Segment = ElfW(Phdr);

constexpr uint64_t huge = std::numeric_limits<uint64_t>::max() - 15;

QString faultOf(QByteArray bytes) {
    QBuffer content(&bytes);
    return content.open(QIODevice::ReadOnly) ? libraryFault(content, kindOfThisProgram()) : "open";
}

/// The library with a change in its header and its table of segments.
QByteArray changed(QByteArray bytes, const std::function<void(FileHeader&, Segment*)>& change) {
    auto& header = *reinterpret_cast<FileHeader*>(bytes.data());
    change(header, reinterpret_cast<Segment*>(bytes.data() + header.e_phoff));
    return bytes;
}

Segment& ofType(const FileHeader& header, Segment* segments, uint32_t type, int which = 0) {
    for (int i = 0; i < header.e_phnum; ++i)
        if (segments[i].p_type == type && which-- == 0)
            return segments[i];
    ADD_FAILURE() << "no segment of type " << type;
    return segments[0];
}

} // namespace

TEST(LibraryFile, CutAnywhereIsRefused) {
    const QByteArray whole = contentOf(fixture("scripted"));
    ASSERT_GT(whole.size(), 10000);
    EXPECT_EQ(faultOf(whole), "");
    for (qsizetype size = 0; size < whole.size(); size += 64) {
        const QString expected = size == 0   ? "The file is empty."
                                 : size < 64 ? "It is not a shared library."
                                             : "The file is cut short.";
        ASSERT_EQ(faultOf(whole.left(size)), expected) << size;
    }
    // Without its table of sections the end of what is loaded decides.
    const QByteArray stripped = changed(whole, [](FileHeader& header, Segment*) {
        header.e_shoff = 0;
        header.e_shnum = 0;
    });
    const auto* header = reinterpret_cast<const FileHeader*>(stripped.constData());
    const auto* segments = reinterpret_cast<const Segment*>(stripped.constData() + header->e_phoff);
    qsizetype end = 0;
    for (int i = 0; i < header->e_phnum; ++i)
        if (segments[i].p_type == PT_LOAD)
            end = std::max(end, qsizetype(segments[i].p_offset + segments[i].p_filesz));
    EXPECT_EQ(faultOf(stripped.left(end)), "");
    EXPECT_EQ(faultOf(stripped.left(end - 1)), "The file is cut short.");
}

TEST(LibraryFile, WhatItsHeadersSayIsChecked) {
    const QByteArray whole = contentOf(fixture("scripted"));
    using Change = std::function<void(FileHeader&, Segment*)>;
    const auto at = [](uint32_t type, int which, const std::function<void(Segment&)>& change) {
        return [=](FileHeader& header, Segment* segments) {
            change(ofType(header, segments, type, which));
        };
    };
    const QString other = "It was made for another kind of processor.";
    const QString none = "It is not a shared library.";
    const QString cut = "The file is cut short.";
    const QString damaged = "The file is damaged.";
    const std::tuple<const char*, QString, Change> rows[] = {
        {"nothing", "", [](FileHeader&, Segment*) {}},
        {"mark", none, [](FileHeader& h, Segment*) { h.e_ident[1] = 'e'; }},
        {"address size", other, [](FileHeader& h, Segment*) { h.e_ident[EI_CLASS] ^= 3; }},
        {"byte order", other, [](FileHeader& h, Segment*) { h.e_ident[EI_DATA] ^= 3; }},
        {"processor", other, [](FileHeader& h, Segment*) { h.e_machine = EM_S390; }},
        {"program", none, [](FileHeader& h, Segment*) { h.e_type = ET_EXEC; }},
        {"object file", none, [](FileHeader& h, Segment*) { h.e_type = ET_REL; }},
        {"no segments", none, [](FileHeader& h, Segment*) { h.e_phnum = 0; }},
        {"size of a segment's row", damaged, [](FileHeader& h, Segment*) { h.e_phentsize = 1; }},
        {"many segments", cut, [](FileHeader& h, Segment*) { h.e_phnum = 0xffff; }},
        {"segments far away", cut, [](FileHeader& h, Segment*) { h.e_phoff = huge; }},
        {"sections far away", cut, [](FileHeader& h, Segment*) { h.e_shoff = huge; }},
        {"offset", cut, at(PT_LOAD, 1, [](Segment& s) { s.p_offset = huge; })},
        {"size", cut, at(PT_LOAD, 1, [](Segment& s) { s.p_filesz = huge; })},
        {"size in memory", damaged, at(PT_LOAD, 1, [](Segment& s) { s.p_memsz = huge; })},
        {"less memory than file", damaged, at(PT_LOAD, 1, [](Segment& s) { s.p_memsz = 1; })},
        {"one over the other", damaged, at(PT_LOAD, 1, [](Segment& s) { s.p_vaddr = 0; })},
        {"no dynamic table", none, at(PT_DYNAMIC, 0, [](Segment& s) { s.p_type = PT_NULL; })},
        {"empty dynamic table", damaged, at(PT_DYNAMIC, 0, [](Segment& s) { s.p_filesz = 0; })},
        {"dynamic table outside", damaged, at(PT_DYNAMIC, 0, [](Segment& s) { s.p_vaddr = huge; })},
        {"dynamic table of any size", damaged,
         at(PT_DYNAMIC, 0, [](Segment& s) { s.p_filesz = huge; })},
    };
    for (const auto& [what, fault, change] : rows)
        EXPECT_EQ(faultOf(changed(whole, change)), fault) << what;
}

TEST(LibraryFile, OnlyFilesAreOpened) {
    const QTemporaryDir folder;
    const auto path = [&](const char* name) { return folder.filePath(name); };
    writeFile(path("text"), "#!/bin/sh\necho this text is longer than the header of a library\n");
    writeFile(path("large"), contentOf(fixture("scripted")));
    ASSERT_TRUE(QFile::resize(path("large"), (qint64(1) << 30) + 1)); // without its blocks
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    const std::pair<QString, QString> rows[] = {
        {path("missing"), "The file can't be read."},
        {folder.path(), "It is not a file."},
        {path("pipe"), "It is not a file."},
        {"/dev/zero", "It is not a file."},
        {path("text"), "It is not a shared library."},
        {path("large"), "The file is larger than 1 GiB."},
        {fixture("unknown_function"), "undefined symbol: tOfALaterVersion"}};
    for (const auto& [file, fault] : rows) {
        PluginLibrary library;
        EXPECT_FALSE(library.open(file)) << file.toStdString();
        EXPECT_EQ(library.fault().toStdString(), fault.toStdString()) << file.toStdString();
    }
}

TEST(PluginObject, NeedsATableOfSevenFunctions) {
    VeloCortivoPlugin good;
    EXPECT_EQ(pluginObjectFault(&good), "");
    using Table = std::array<const void*, 7>;
    static Table tables[4]; // static, so that they lie in a loaded file as those of classes do
    const auto* entries = *reinterpret_cast<const void* const**>(&good);
    for (Table& table : tables)
        std::copy_n(entries, table.size(), table.begin());
    tables[1][6] = nullptr;
    tables[2][2] = &tables;
    tables[3][5] = ::dlsym(RTLD_DEFAULT, "__cxa_pure_virtual");
    const Table onHeap = tables[0];
    const QString incomplete = "The class of its object lacks operations of the plug-in interface.";
    const QString none = "The object of createPlugin() is not a plug-in.";
    const std::pair<const void*, QString> rows[] = {
        {&tables[0], ""},
        {&tables[1], incomplete},
        {&tables[2], incomplete},
        {&tables[3], incomplete},
        {&onHeap, none},
        {nullptr, none},
        {reinterpret_cast<const char*>(&tables[0]) + 1, none}};
    for (const auto& [table, fault] : rows)
        EXPECT_EQ(pluginObjectFault(reinterpret_cast<const VeloCortivoPlugin*>(&table)), fault);
    EXPECT_EQ(pluginObjectFault(nullptr), none);
}
