// Lists one directory of 100,000 files by a pattern list, as the Load tab and
// the file boxes do, and times it beside `find -maxdepth 1` on the same
// directory. Prints both times and the ratio ours / reference.
#include "core/directory_reader.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int files = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 100000;
    QTemporaryDir tmp;
    const QString dir = tmp.path();
    for (int i = 0; i < files; ++i) {
        const char* ext = i % 3 == 0 ? ".jpg" : (i % 3 == 1 ? ".GIF" : ".txt");
        QFile f(dir + QStringLiteral("/img_%1%2").arg(i, 6, 10, QLatin1Char('0')).arg(ext));
        if (!f.open(QIODevice::WriteOnly)) {
            std::fprintf(stderr, "cannot make test files\n");
            return 1;
        }
    }
    for (int i = 0; i < 50; ++i) {
        QDir().mkdir(dir + QStringLiteral("/sub_%1").arg(i));
    }

    // Warm the directory cache once, so both sides read from memory.
    matching_file_names(dir, QStringLiteral("*.*"));

    QElapsedTimer t;
    t.start();
    const QStringList ours = matching_file_names(dir, QStringLiteral("*.gif;*.jpg"));
    const QStringList subdirs = subdirectory_paths(dir);
    const qint64 ours_ms = t.elapsed();

    t.restart();
    QProcess find;
    find.start(QStringLiteral("sh"),
               {QStringLiteral("-c"),
                QStringLiteral("find '%1' -maxdepth 1 -type f \\( -iname '*.gif' -o -iname "
                               "'*.jpg' \\) -printf '%f\\n' | LC_ALL=C sort -f >/dev/null; "
                               "find '%1' -mindepth 1 -maxdepth 1 -type d >/dev/null")
                    .arg(dir)});
    find.waitForFinished(-1);
    const qint64 ref_ms = t.elapsed();

    std::printf("files %d, matched %lld, subdirectories %lld\n", files,
                static_cast<long long>(ours.size()), static_cast<long long>(subdirs.size()));
    std::printf("ours %lld ms, find+sort %lld ms, ratio %.2f\n", static_cast<long long>(ours_ms),
                static_cast<long long>(ref_ms),
                ref_ms > 0 ? double(ours_ms) / double(ref_ms) : 0.0);
    return 0;
}
