// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/settings_file.h"

#include "base/number_text.h"
#include "base/text_reading.h"
#include "run/settings/settings_fields.h"
#include "run/settings/settings_paths.h"

namespace {

constexpr int keyColumns = 34;

QString entry(const QString& key, const QString& value) {
    return key.leftJustified(keyColumns) + value + '\n';
}

QString quoted(const QString& value) {
    return '"' + value + '"';
}

// The format has no way to write a quote, nor more than 255 characters that can be read back.
QString asQuotedText(QString text) {
    return text.replace('"', '\'').left(maximumQuotedLength - 1);
}

QString valueText(const SettingsField& field, const RunSettings& settings) {
    if (const auto* integer = std::get_if<int RunSettings::*>(&field.member))
        return QString::number(settings.**integer);
    if (const auto* flag = std::get_if<bool RunSettings::*>(&field.member))
        return settings.**flag ? "1" : "0";
    if (const auto* real = std::get_if<float RunSettings::*>(&field.member))
        return QString::fromLatin1(shortestText(settings.**real));
    const QString& text = settings.*std::get<QString RunSettings::*>(field.member);
    if (field.kind == ValueKind::Word)
        return text;
    if (field.kind == ValueKind::Text)
        return quoted(asQuotedText(text));
    return quoted(field.writtenRelative ? relativePath(text, settings.settingsFileDir) : text);
}

QString watchFolderEntry(const SettingsField& field, const RunSettings& settings) {
    const bool list = !settings.WatchFolderListFile.isEmpty();
    const QString& path = list ? settings.WatchFolderListFile : settings.WatchFolder;
    return entry(list ? "WATCHFOLDERLIST:" : field.key,
                 quoted(relativePath(path, settings.settingsFileDir)));
}

QString protocolEntry(const RunSettings& settings) {
    const auto text = [&](const char* key, const QString& path) {
        return entry(key, quoted(relativePath(path, settings.settingsFileDir)));
    };
    if (!settings.TDatFile.isEmpty())
        return text("TDatFile:", settings.TDatFile) + '\n';
    if (!settings.RealTimeProtocol.isEmpty())
        return text("RealTimeProtocol:", settings.RealTimeProtocol);
    return text("StimulationProtocol:", settings.StimulationProtocol);
}

QString fieldText(const SettingsField& field, const RunSettings& settings) {
    QString text;
    if (field.kind == ValueKind::WatchFolder)
        text = watchFolderEntry(field, settings);
    else if (field.kind == ValueKind::Protocol)
        text = protocolEntry(settings);
    else if (field.kind != ValueKind::None)
        text = entry(field.key, valueText(field, settings));
    return field.blankLineAfter ? text + '\n' : text;
}

} // namespace

WrittenSettings settingsText(RunSettings& settings) {
    RunSettings written = settings;
    written.FileVersion = writtenFileVersion;
    written.settingsFileDir =
        paths::folderWithSlash(paths::withForwardSlashes(settings.settingsFilePath));
    WrittenSettings result{"\n"};
    for (const SettingsField& field : settingsFields()) {
        // Only the head is unconditional; nothing more is written for a multi-run project.
        if (written.MergeType && field.condition != nullptr)
            break;
        if (!field.applies(written) ||
            (field.presence == Presence::Extension &&
             valueText(field, written) == valueText(field, RunSettings())))
            continue;
        result.text += fieldText(field, written);
        if (field.effect != FieldEffect::DataType)
            continue;
        // The old name is written once more, with the block of the new one.
        if (written.DataType.toUpper() == "ANALYZE_DRIN")
            settings.DataType = written.DataType = "PHILIPS_ANALYZE_DRIN";
        result.dataTypeSupported = isSupportedDataType(written.DataType);
        if (!result.dataTypeSupported)
            break;
    }
    return result;
}
