// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/pos_file.h"

#include "base/messages.h"
#include "volume/anatomy/keyed_values.h"

bool parsePositions(const QString& text, PositionFile& file) {
    KeyedValues values(text);
    PositionFile found;
    FMRPositionInfo& position = found.position;
    const bool hasVersion = KeyedValues::isVersionKey(values.key());
    position.coordinateSystem = values.nextInteger();
    if (hasVersion)
        found.version = position.coordinateSystem;
    if (found.version >= 2) {
        values.text(); // the file that the positions were taken from
        position.coordinateSystem = values.integer();
    }
    // The one vector of the older versions is no centre of a slice.
    const Vector3 first = values.vector();
    if (found.hasCentres()) {
        position.sliceCenterFirst = first;
        position.sliceCenterLast = values.vector();
        position.positionInfoValid = 1;
    }
    position.rowDirection = values.vector();
    position.columnDirection = values.vector();
    found.rows = values.integer();
    found.columns = values.integer();
    position.fovRows = values.real();
    position.fovColumns = values.real();
    found.sliceThickness = values.real();
    found.gapThickness = values.real();
    if (values.failed())
        return false;
    file = found;
    return true;
}

bool readPositionFile(const QString& path, PositionFile& file) {
    QString text;
    if (!readTextFile(path, text)) {
        showWarning(QString("ERROR: Can not open POS file: \"%1\" !").arg(path));
        return false;
    }
    if (parsePositions(text, file))
        return true;
    showWarning(QString("ERROR: The POS file \"%1\" is damaged: it ends too early, or has no "
                        "number where one belongs !")
                    .arg(path));
    return false;
}
