// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/paths.h"

namespace paths {

QString withForwardSlashes(QString path) {
    return path.replace('\\', '/');
}

QString withTrailingSlash(QString folder) {
    if (!folder.isEmpty() && !folder.endsWith('/'))
        folder += '/';
    return folder;
}

QString folderWithSlash(const QString& path) {
    return path.left(path.lastIndexOf('/') + 1);
}

QString folderWithoutSlash(const QString& path) {
    return path.left(std::max(path.lastIndexOf('/'), qsizetype(0)));
}

QString fileName(const QString& path) {
    return path.mid(path.lastIndexOf('/') + 1);
}

QString extension(const QString& path) {
    const QString name = fileName(path);
    const qsizetype dot = name.lastIndexOf('.');
    return dot < 0 ? QString() : name.mid(dot + 1).toLower();
}

QString withoutExtension(const QString& path) {
    const qsizetype dot = path.lastIndexOf('.');
    return dot > path.lastIndexOf('/') ? path.left(dot) : path;
}

QString withDefaultExtension(const QString& path, const QString& extension) {
    return fileName(path).contains('.') ? path : path + '.' + extension;
}

QString join(const QString& folder, const QString& name) {
    QString tail = name;
    while (tail.startsWith('/') && !folder.isEmpty())
        tail.remove(0, 1);
    return withTrailingSlash(folder) + tail;
}

} // namespace paths
