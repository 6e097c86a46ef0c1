// SPDX-License-Identifier: GPL-3.0-or-later
#include "command_line.h"

#include "mental_tasks.h"

#include <QCommandLineParser>
#include <cmath>
#include <tuple>

namespace {

void addOptions(QCommandLineParser& parser) {
    const QList<QCommandLineOption> options = {
        {{"h", "help"}, "Show this text."},
        {"type", "Data type, see below (default: SIEMENS_DICOM_MOSAIC).", "type"},
        {"out", "Session folder (default: the current one).", "folder"},
        {"name", "Name of project and protocol (default: Simulation).", "name"},
        {"run", "Number of the first run (default: 1).", "number"},
        {"runs", "Runs one after the other (default: 1).", "count"},
        {"matrix", "Pixels of a slice (default: 64x64).", "columns x rows"},
        {"slices", "Slices of a volume (default: 25).", "count"},
        {"volumes", "Volumes, the skipped ones included (default: 152).", "count"},
        {"skip", "Volumes before the protocol begins (default: 2).", "count"},
        {"tr", "Time from volume to volume (default: 1000).", "milliseconds"},
        {"fov", "Field of view along a row (default: 192).", "millimetres"},
        {"slice-distance", "Distance of slices (default: 100 over all slices).", "millimetres"},
        {"block", "Volumes of a block of the protocol (default: 10).", "count"},
        {"noise", "Standard deviation of the noise (default: 8; brain 650-1130).", "value"},
        {"amplitude", "Response of active regions, percent (default: 2.5).", "percent"},
        {"code",
         "Strength of a fine pattern that tells the conditions apart, percent (default: 0).",
         "percent"},
        {"spell",
         "The subject spells letters and blanks by mental tasks, 70 s each, instead of seeing "
         "blocks. The TR is 1667 unless it is given, and the text sets the number of volumes.",
         "text"},
        {"train", "Each task and duration of the spelling this often, instead of blocks.",
         "trials"},
        {"response-delay", "The subject responds this much later (default: 0).", "seconds"},
        {"motion", "Motion of the head: none (default), drift or jumps.", "kind"},
        {"smoothing", "Width of the smoothing in the settings (default: 0, off).", "millimetres"},
        {"seed", "Seed of all random numbers (default: 1).", "number"},
        {"syntax", "explicit-le (default), implicit-le or explicit-be.", "syntax"},
        {"big-endian", "Raw data are big endian."},
        {"fixed-study", "Siemens IMA: the study number doesn't rise with the volumes."},
        {"mosaic-tiles", "Siemens IMA: tiles in a row of a mosaic (default: all slices fit).",
         "count"},
        {"image-transformation", "PHILIPS_ANALYZE_DRIN: 0, 1 or 2 (default: 2).", "number"},
        {"watch-folder",
         "Named in the settings as plain (default), ser-mark, number-mark, list, "
         "or exam.",
         "form"},
        {"protocol", "prt (default), or rtp or tdat, which grow during the run.", "kind"},
        {"half-lines", "Write lines of a growing protocol in halves with a pause."},
        {"at-tr", "Deliver a volume every TR (default)."},
        {"as-fast", "Deliver as fast as files can be written."},
        {"speed", "Deliver this many times faster than measured (default: 1).", "factor"},
        {"start-delay", "Wait before each run (default: 0).", "milliseconds"},
        {"growing", "Write each file in place, in pieces with pauses."},
        {"late", "Deliver a volume later; may be repeated.", "volume:milliseconds"},
        {"missing", "Never deliver a volume; may be repeated.", "volume"},
        {"truncated", "Cut the files of a volume in half; may be repeated.", "volume"},
        {"out-of-order", "Deliver slices backwards (GE_HDXT_DICOM: in any order), whole volumes "
                         "exchanged in pairs."},
        {"settings-only", "Write settings, protocol and truth, but no images."},
        {"replay", "Deliver the files of this folder instead of simulated ones.", "folder"},
    };
    parser.addOptions(options);
}

/// The data types with their files, after the options.
QString typeList() {
    QString text = "\nData types:\n";
    for (const ScannerTypeName& name : scannerTypeNames())
        text += QString("  %1  %2\n").arg(name.word, -22).arg(name.files);
    return text;
}

/// Reads values from the parsed line; the first bad one is kept as the problem.
class Values {
public:
    explicit Values(const QCommandLineParser& parser) : parser_(parser) {}

    void integer(const char* option, int& value) {
        if (parser_.isSet(option))
            value = whole(option, parser_.value(option));
    }
    void real(const char* option, double& value) {
        if (!parser_.isSet(option))
            return;
        bool isNumber = false;
        value = parser_.value(option).toDouble(&isNumber);
        if (!isNumber || !std::isfinite(value))
            refuse(option, parser_.value(option));
    }
    template<typename Choice>
    void choice(const char* option, const std::map<QString, Choice>& choices, Choice& value) {
        if (!parser_.isSet(option))
            return;
        if (const auto found = choices.find(parser_.value(option)); found != choices.end())
            value = found->second;
        else
            refuse(option, parser_.value(option));
    }
    void text(const char* option, QString& value) {
        if (parser_.isSet(option))
            value = parser_.value(option);
    }
    void volumes(const char* option, std::set<int>& volumes) {
        for (const QString& value : parser_.values(option))
            volumes.insert(whole(option, value));
    }
    [[nodiscard]] std::optional<std::pair<int, int>> pair(const char* option, const QString& value,
                                                          QChar separator) {
        const QStringList parts = value.split(separator);
        if (parts.size() != 2) {
            refuse(option, value);
            return std::nullopt;
        }
        return std::pair(whole(option, parts[0]), whole(option, parts[1]));
    }
    void refuse(const QString& option, const QString& value) {
        if (problem_.isEmpty())
            problem_ = QString("The value \"%1\" doesn't fit option --%2.").arg(value, option);
    }
    [[nodiscard]] const QString& problem() const { return problem_; }

private:
    int whole(const char* option, const QString& value) {
        bool isNumber = false;
        const int number = value.toInt(&isNumber);
        if (!isNumber)
            refuse(option, value);
        return number;
    }

    const QCommandLineParser& parser_;
    QString problem_;
};

/// The skipped volumes are known already. Tasks need their number of volumes.
void takeTasks(const QCommandLineParser& parser, Values& values, SimulationOptions& simulation) {
    values.text("spell", simulation.spelledText);
    values.integer("train", simulation.trainingTrials);
    values.real("response-delay", simulation.responseDelay);
    for (const char* const option : {"spell", "train"})
        if (parser.isSet(option) && !simulation.hasTasks())
            values.refuse(option, parser.value(option));
    if (simulation.hasTasks())
        simulation.repetitionTime = repetitionTimeOfTasks;
    values.integer("tr", simulation.repetitionTime);
    if (simulation.hasTasks())
        simulation.nrOfVolumes = simulation.nrOfVolumesToSkip + volumesOfTasks(simulation);
}

void takeSimulation(const QCommandLineParser& parser, Values& values, SimulatorCommand& command) {
    SimulationOptions& simulation = command.simulation;
    std::map<QString, ScannerType> types;
    for (const ScannerTypeName& name : scannerTypeNames())
        types.emplace(name.word, name.type);
    values.choice("type", types, simulation.type);
    values.choice<HeadMotion>(
        "motion",
        {{"none", HeadMotion::None}, {"drift", HeadMotion::Drift}, {"jumps", HeadMotion::Jumps}},
        simulation.motion);
    values.choice<TransferSyntax>("syntax",
                                  {{"explicit-le", TransferSyntax::ExplicitLittle},
                                   {"implicit-le", TransferSyntax::ImplicitLittle},
                                   {"explicit-be", TransferSyntax::ExplicitBig}},
                                  simulation.syntax);
    values.text("out", simulation.folder);
    values.text("name", simulation.name);
    values.integer("run", simulation.run);
    values.integer("slices", simulation.nrOfSlices);
    values.integer("skip", simulation.nrOfVolumesToSkip);
    takeTasks(parser, values, simulation);
    values.integer("volumes", simulation.nrOfVolumes);
    values.integer("fov", simulation.fieldOfView);
    values.integer("block", simulation.blockLength);
    values.integer("smoothing", simulation.smoothingWidth);
    values.real("slice-distance", simulation.sliceDistance);
    values.real("noise", simulation.noise);
    double percent = simulation.amplitude * 100.0;
    values.real("amplitude", percent);
    simulation.amplitude = percent / 100.0;
    percent = simulation.patternStrength * 100.0;
    values.real("code", percent);
    simulation.patternStrength = percent / 100.0;
    if (parser.isSet("matrix"))
        if (const auto size = values.pair("matrix", parser.value("matrix"), 'x'))
            std::tie(simulation.sizeX, simulation.sizeY) = *size;
    if (parser.isSet("seed")) {
        bool isNumber = false;
        simulation.seed = parser.value("seed").toULongLong(&isNumber);
        if (!isNumber)
            values.refuse("seed", parser.value("seed"));
    }
}

void takeVariants(const QCommandLineParser& parser, Values& values, SimulationOptions& simulation) {
    values.choice<WatchFolderForm>("watch-folder",
                                   {{"plain", WatchFolderForm::Plain},
                                    {"ser-mark", WatchFolderForm::SeriesMark},
                                    {"number-mark", WatchFolderForm::NumberMark},
                                    {"list", WatchFolderForm::List},
                                    {"exam", WatchFolderForm::Exam}},
                                   simulation.watchFolder);
    values.choice<ProtocolKind>(
        "protocol",
        {{"prt", ProtocolKind::Prt}, {"rtp", ProtocolKind::Rtp}, {"tdat", ProtocolKind::Tdat}},
        simulation.protocol);
    simulation.rawDataBigEndian = parser.isSet("big-endian");
    simulation.fixedStudyNumber = parser.isSet("fixed-study");
    values.integer("mosaic-tiles", simulation.mosaicTiles);
    values.integer("image-transformation", simulation.imageTransformation);
    // The names of these files state the order in which they were written.
    simulation.shuffledSlices =
        parser.isSet("out-of-order") && simulation.type == ScannerType::GeHdxtDicom;
}

void takeDelivery(const QCommandLineParser& parser, Values& values, SimulatorCommand& command) {
    DeliveryOptions& delivery = command.delivery;
    delivery.atRepetitionTime = !parser.isSet("as-fast");
    delivery.growing = parser.isSet("growing");
    delivery.outOfOrder = parser.isSet("out-of-order") && !command.simulation.shuffledSlices;
    delivery.halfLines = parser.isSet("half-lines");
    values.real("speed", delivery.speed);
    values.integer("start-delay", delivery.startDelay);
    values.volumes("missing", delivery.missing);
    values.volumes("truncated", delivery.truncated);
    for (const QString& value : parser.values("late"))
        if (const auto late = values.pair("late", value, ':')) {
            if (late->second < 0)
                values.refuse("late", value);
            delivery.late.insert(*late);
        }
    command.volumesGiven = parser.isSet("volumes");
    command.settingsOnly = parser.isSet("settings-only");
    values.integer("runs", command.nrOfRuns);
    values.text("replay", command.replayFolder);
}

QString problemOfFaults(const SimulatorCommand& command) {
    std::set<int> volumes = command.delivery.missing;
    volumes.insert(command.delivery.truncated.begin(), command.delivery.truncated.end());
    for (const auto& [volume, delay] : command.delivery.late)
        volumes.insert(volume);
    // The number of volumes of a replay is unknown before its folder is read.
    const bool isCounted = command.replayFolder.isEmpty() || command.volumesGiven;
    for (const int volume : volumes)
        if (volume < 1 || (isCounted && volume > command.simulation.nrOfVolumes))
            return QString("There is no volume %1.").arg(volume);
    return {};
}

/// Invalid combinations with a data type or a kind of protocol.
QString problemOfKind(const SimulatorCommand& command) {
    const SimulationOptions& simulation = command.simulation;
    if (command.delivery.halfLines && simulation.protocol == ProtocolKind::Prt)
        return "A .prt protocol doesn't grow in lines.";
    if (command.delivery.outOfOrder && scannerFormat(simulation)->writesOneFile())
        return "Volumes of one growing file come in their order.";
    if (command.settingsOnly && command.nrOfRuns > 1 &&
        (simulation.watchFolder == WatchFolderForm::SeriesMark ||
         simulation.watchFolder == WatchFolderForm::NumberMark ||
         simulation.watchFolder == WatchFolderForm::Exam))
        return "With the folders of later runs there, the first one would watch the last of them.";
    if (command.replayFolder.isEmpty())
        return {};
    if (simulation.type != ScannerType::SiemensMosaic && simulation.type != ScannerType::Dicom)
        return "A replay needs the type SIEMENS_DICOM_MOSAIC or DICOM.";
    if (simulation.protocol != ProtocolKind::Prt)
        return "A replay has a .prt protocol.";
    if (simulation.hasTasks())
        return "The subject of a replay can't be given tasks.";
    return {};
}

QString problemOfCommand(const QCommandLineParser& parser, const SimulatorCommand& command) {
    if (!parser.positionalArguments().isEmpty())
        return QString("Unexpected argument \"%1\".").arg(parser.positionalArguments().first());
    if (parser.isSet("as-fast") && (parser.isSet("at-tr") || parser.isSet("speed")))
        return "--as-fast excludes --at-tr and --speed.";
    if (command.delivery.speed < 0.01 || command.delivery.speed > 1000.0)
        return "The speed must lie between 0.01 and 1000.";
    if (command.delivery.startDelay < 0)
        return "The start delay can't be negative.";
    if (command.nrOfRuns < 1 || command.nrOfRuns + command.simulation.run > 1000)
        return "The runs must be numbered between 1 and 999.";
    if (!command.replayFolder.isEmpty() && command.nrOfRuns != 1)
        return "A replay is one run.";
    if (QString problem = problemOf(command.simulation); !problem.isEmpty())
        return problem;
    if (QString problem = problemOfKind(command); !problem.isEmpty())
        return problem;
    return problemOfFaults(command);
}

} // namespace

SimulatorCommand parseCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Writes what a scanner writes: image files of a simulated head, volume by volume, into\n"
        "incoming/ of the session folder, with settings, protocol and, aside, the truth.");
    addOptions(parser);
    SimulatorCommand command;
    if (!parser.parse(arguments)) {
        command.problem = parser.errorText();
        return command;
    }
    if (parser.isSet("help")) {
        command.helpText = parser.helpText() + typeList();
        return command;
    }
    Values values(parser);
    takeSimulation(parser, values, command);
    takeVariants(parser, values, command.simulation);
    takeDelivery(parser, values, command);
    command.problem =
        values.problem().isEmpty() ? problemOfCommand(parser, command) : values.problem();
    return command;
}
