#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

// A gallery object of the build's home folder, copied into a folder of the
// test's own (the tool saves beside the file it is given).
inline QString copyOfGalleryObject(const QTemporaryDir& folder, const QString& name) {
    QDirIterator found(qEnvironmentVariable("VESSA47_HOME") + QStringLiteral("Objects"),
                       {name + QStringLiteral(".mdl")}, QDir::Files, QDirIterator::Subdirectories);
    const QString source = found.hasNext() ? found.next() : QString();
    const QString copy = folder.filePath(name + QStringLiteral(".mdl"));
    QFile::copy(source, copy);
    return copy;
}
