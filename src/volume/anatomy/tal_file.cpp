// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/tal_file.h"

#include "base/messages.h"
#include "volume/anatomy/keyed_values.h"

namespace {

void readNames(KeyedValues& values, TalairachPoints& points) {
    if (KeyedValues::isVersionKey(values.key())) {
        points.version = values.nextInteger();
        if (points.version >= 2) {
            points.vmrName = values.text();
            return;
        }
        values.restOfLine();
        values.key();
    }
    // The key of the name has been read: a name without quotes may hold blanks.
    points.vmrName = values.restOfLine();
}

} // namespace

bool parseTalairachPoints(const QString& text, TalairachPoints& points) {
    KeyedValues values(text);
    TalairachPoints found;
    readNames(values, found);
    for (CubePoint* point : {&found.referencePoint1, &found.referencePoint2, &found.referencePoint3,
                             &found.referencePoint4, &found.referencePoint5, &found.referencePoint6,
                             &found.referencePoint8, &found.referencePoint7}) {
        values.key();
        for (int& coordinate : *point)
            coordinate = values.nextInteger();
    }
    // Since version 2 two more values follow, on which nothing depends.
    if (found.version >= 2) {
        values.integer();
        values.real();
    }
    if (values.failed())
        return false;
    points = found;
    return true;
}

bool readTalairachFile(const QString& path, TalairachPoints& points) {
    QString text;
    if (!readTextFile(path, text)) {
        showWarning(QString("ERROR: Can not open TAL file \"%1\" !").arg(path));
        return false;
    }
    if (parseTalairachPoints(text, points))
        return true;
    showWarning(QString("ERROR: The TAL file \"%1\" is damaged: it ends too early, or has no "
                        "number where one belongs !")
                    .arg(path));
    return false;
}
