// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/fmr_file.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/text_reading.h"

namespace {

const QString noFile = QStringLiteral("<none>");

QString emptyIfNone(const QString& text) {
    return text == noFile ? QString() : text;
}

/// One pass over a header. Keys are positional: most are skipped unread.
class FMRParser {
public:
    FMRParser(const QString& text, FMRScope scope, FMRHeader& header)
        : stream_(text), scope_(scope), header_(header) {}

    FMRParseResult parse() {
        const FMRParseResult start = readVersionAndSizes();
        if (start != FMRParseResult::Ok)
            return start;
        readPrefixAndTiming();
        if (!readResolution())
            return FMRParseResult::UnexpectedTokens;
        readDisplayAndProtocols();
        readVoxelSizes();
        if (header_.fileVersion >= 3 && scope_ == FMRScope::Project && !readPositions())
            return FMRParseResult::UnexpectedTokens;
        if (stream_.failed() || textMissing_)
            return FMRParseResult::UnexpectedTokens;
        // Nothing depends on the name of the first data file: a header that ends before it is
        // complete.
        if (header_.fileVersion >= 4 && !stream_.atEnd())
            header_.FirstDataSourceFile = quoted();
        return sizesArePossible() ? FMRParseResult::Ok : FMRParseResult::ImpossibleSizes;
    }

private:
    int keyedInteger() {
        stream_.word();
        return stream_.integer();
    }
    float keyedReal() {
        stream_.word();
        return float(stream_.real());
    }
    Vector3 keyedVector() {
        Vector3 vector{};
        for (float& component : vector)
            component = keyedReal();
        return vector;
    }
    /// The next text in double quotes; its key, if not read yet, is skipped. Paths may be as long
    /// as the system allows.
    QString quoted() {
        constexpr int maximumPathLength = 4096;
        QString text;
        if (!readDelimitedString('"', text, stream_, maximumPathLength))
            textMissing_ = true;
        return text;
    }
    /// The rest of a line, for texts of versions below 5.
    QString line() {
        constexpr qsizetype maximumLength = 1024;
        return trimFileText(stream_.restOfLine().left(maximumLength)).trimmed();
    }

    FMRParseResult readVersionAndSizes() {
        const QString first = stream_.word();
        const int number = stream_.integer();
        const QChar initial = first.isEmpty() ? QChar() : first[0].toLower();
        if (stream_.failed() || (initial != 'f' && initial != 'n'))
            return FMRParseResult::UnexpectedTokens;
        header_.fileVersion = initial == 'f' ? number : 1;
        if (header_.fileVersion >= 6)
            return FMRParseResult::UnsupportedVersion;
        header_.NrOfVolumes = initial == 'f' ? keyedInteger() : number;
        if (stream_.word() != "NrOfSlices:" && scope_ == FMRScope::Project)
            return FMRParseResult::UnexpectedTokens;
        header_.NrOfSlices = stream_.integer();
        return FMRParseResult::Ok;
    }

    void readPrefixAndTiming() {
        const int version = header_.fileVersion;
        if (version < 2)
            keyedInteger();
        header_.NrOfSkippedVolumes = keyedInteger();
        if (version < 5) {
            stream_.word();
            header_.Prefix = emptyIfNone(line());
            header_.DataStorageFormat = 1;
        } else {
            header_.Prefix = emptyIfNone(quoted());
            header_.DataStorageFormat = keyedInteger();
        }
        header_.TR = timeUnlessKeyIs("FileType:", 3000.0f);
        header_.InterSliceTime = timeUnlessKeyIs("Delimiter:", 100.0f);
        if (version >= 2)
            header_.TimeResolutionVerified = keyedInteger() != 0;
        if (version >= 5)
            header_.TE = keyedReal();
        if (version >= 4) {
            header_.SliceAcquisitionOrder = keyedInteger();
            header_.SliceAcquisitionOrderVerified = keyedInteger() != 0;
        }
    }

    /// The earliest files name their image files where later ones give times.
    float timeUnlessKeyIs(const char* oldKey, float replacement) {
        if (stream_.word() != QLatin1String(oldKey))
            return float(stream_.real());
        stream_.word();
        return replacement;
    }

    bool readResolution() {
        const bool tested = scope_ == FMRScope::Project;
        const QString keyX = stream_.word();
        header_.ResolutionX = stream_.integer();
        const QString keyY = stream_.word();
        header_.ResolutionY = stream_.integer();
        return !tested || (keyX == "ResolutionX:" && keyY == "ResolutionY:");
    }

    void readDisplayAndProtocols() {
        QString amr;
        if (header_.fileVersion < 5) {
            stream_.word();
            amr = line();
            if (amr.size() >= 2 && amr.startsWith('"') && amr.endsWith('"'))
                amr = amr.mid(1, amr.size() - 2);
        } else {
            amr = quoted();
        }
        header_.ShowAMRFile = keyedInteger();
        keyedInteger(); // image index
        header_.LayoutNColumns = keyedInteger();
        header_.LayoutNRows = keyedInteger();
        header_.LayoutZoomLevel = keyedInteger();
        header_.SegmentSize = keyedInteger();
        if (amr == noFile)
            header_.ShowAMRFile = 0;
        header_.LoadAMRFile = emptyIfNone(amr);
        if (stream_.atEnd()) {
            // A version 1 file may end here; a later one lacks its voxel sizes.
            textMissing_ = header_.fileVersion >= 2;
            return;
        }
        qsizetype start = stream_.position();
        QString key = stream_.word();
        if (key == "SegmentOffset:") {
            header_.SegmentOffset = stream_.integer();
            start = stream_.position();
            key = stream_.atEnd() ? QString() : stream_.word();
        }
        if (header_.fileVersion >= 5)
            readLinkedProtocols();
        else
            readOldProtocol(key, start);
    }

    void readLinkedProtocols() {
        const int count = stream_.integer();
        header_.ProtocolFiles.clear();
        for (int i = 0; i < count && !textMissing_; ++i)
            header_.ProtocolFiles << quoted();
    }

    void readOldProtocol(const QString& firstKey, qsizetype start) {
        QString key = firstKey;
        header_.ProtocolFiles.clear();
        if (key == "ProtocolVersion:") {
            const int version = stream_.integer();
            if (version == 2) {
                stream_.word();
                const QString file = emptyIfNone(line());
                if (!file.isEmpty())
                    header_.ProtocolFiles << file;
                return;
            }
            if (version != 1)
                return;
            key = stream_.word();
            start = stream_.position();
        }
        if (key == "NrOfConditions:")
            stream_.integer();
        else
            stream_.seek(start); // no protocols: the key belongs to what follows
    }

    void readVoxelSizes() {
        if (header_.fileVersion < 2)
            return;
        header_.pixelSizeX = keyedReal();
        header_.pixelSizeY = keyedReal();
        header_.sliceThickness = keyedReal();
        header_.sliceGap = keyedReal();
        header_.VoxelResolutionVerified = keyedInteger() != 0;
    }

    bool readPositions() {
        if (stream_.word() != "PositionInformationFromImageHeaders")
            return false;
        FMRPositionInfo& position = header_.position;
        position.positionInfoValid = keyedInteger();
        position.coordinateSystem = keyedInteger();
        position.sliceCenterFirst = keyedVector();
        position.sliceCenterLast = keyedVector();
        position.rowDirection = keyedVector();
        position.columnDirection = keyedVector();
        // Rows and columns, slice thickness and gap are those stated above.
        position.sizesFromHeaders = keyedInteger() != 0;
        keyedInteger();
        position.fovRows = keyedReal();
        position.fovColumns = keyedReal();
        keyedReal();
        keyedReal();
        keyedInteger(); // past transformations
        stream_.word();
        header_.radiologicalConvention = stream_.word().toUpper() == "YES";
        return true;
    }

    [[nodiscard]] bool sizesArePossible() const {
        const auto fits = [](int size, int maximum) { return size >= 1 && size <= maximum; };
        return fits(header_.NrOfVolumes, maximumFMRVolumes) &&
               fits(header_.NrOfSlices, maximumFMRSize) &&
               fits(header_.ResolutionX, maximumFMRSize) &&
               fits(header_.ResolutionY, maximumFMRSize);
    }

    TokenStream stream_;
    FMRScope scope_;
    FMRHeader& header_;
    bool textMissing_ = false;
};

} // namespace

FMRParseResult parseFMR(const QString& text, FMRScope scope, FMRHeader& header) {
    header = FMRHeader();
    return FMRParser(text, scope, header).parse();
}

bool readFMRFile(const QString& fileName, FMRScope scope, FMRHeader& header) {
    QString text;
    if (!readTextFile(fileName, text)) {
        showWarning(QString("ERROR - Can not open FMR file: \"%1\" !").arg(fileName));
        return false;
    }
    FMRHeader found;
    switch (parseFMR(text, scope, found)) {
    case FMRParseResult::Ok:
        if (namesFolder(found.Prefix)) {
            const QString name = paths::fileName(paths::withForwardSlashes(found.Prefix));
            showWarning(QString("WARNING: The prefix \"%1\" in \"%2\" names a folder. The data "
                                "are looked for beside the header, under \"%3\".")
                            .arg(shortened(found.Prefix), fileName, shortened(name)));
            found.Prefix = name;
        }
        header = found;
        return true;
    case FMRParseResult::UnexpectedTokens:
        showWarning("ERROR - Can not read FMR file - unexpected tokens encountered!");
        break;
    case FMRParseResult::UnsupportedVersion:
        showWarning("ERROR - Unsupported FMR file version\n\n"
                    "Only file versions \"1\" - \"5\" supported!");
        break;
    case FMRParseResult::ImpossibleSizes:
        showWarning(QString("ERROR - Can not read FMR file \"%1\" - it states impossible sizes: "
                            "%2 volumes, %3 slices, %4 x %5 pixels!")
                        .arg(fileName)
                        .arg(found.NrOfVolumes)
                        .arg(found.NrOfSlices)
                        .arg(found.ResolutionX)
                        .arg(found.ResolutionY));
        break;
    }
    return false;
}

bool readFMRHeader(const QString& fileName, FMRHeader& header) {
    return readFMRFile(fileName, FMRScope::Inspection, header);
}

bool namesFolder(const QString& prefix) {
    return paths::withForwardSlashes(prefix).contains('/');
}

QString prefixOfFiles(const QString& prefix) {
    QString name = paths::fileName(paths::withForwardSlashes(prefix));
    // A header has no escape for a quote, and no file name can hold a zero.
    name.replace('"', '\'').remove(QChar(0));
    while (name.endsWith('-'))
        name.chop(1);
    return emptyIfNone(name);
}
