#pragma once

#include <QString>
#include <QStringList>

// The "drives" of this platform: the roots a user can browse from. "/" comes
// first, then the mount points of real file systems that are readable
// directories (removable media, other disks, /home), in mount order. Kernel
// and system mounts (/proc, /sys, /dev, /run, /boot ...) are left out.

// Reads /proc/mounts.
QStringList mounted_roots();
// The same from the text of a mounts table; `usable` decides whether a mount
// point can be offered (by default: a readable, enterable directory).
QStringList mounted_roots_from(const QString& mounts_text,
                               bool (*usable)(const QString& path) = nullptr);

// The root of `roots` that holds `path`: the longest one that is the path
// itself or a parent of it. "/" when none is (or "" when `roots` is empty).
QString root_of(const QString& path, const QStringList& roots);
