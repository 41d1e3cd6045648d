#include "core/startup.h"
#include "support/qt_print.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

void write(const QString& path, const QByteArray& bytes, const QDateTime& time) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
    f.setFileTime(time, QFileDevice::FileModificationTime);
}

QByteArray read(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(missing)");
}

}  // namespace

// An installed program (bin/ beside share/quilldex/) seeds the per-user
// directory on first start; later starts keep the user's catalog and bring
// the help up to date after an upgrade.
TEST(Seeding, FirstStartCopiesTheInstalledCopyAndAnUpgradeSparesTheCatalog) {
    QTemporaryDir tmp;
    const QString installed = tmp.path() + "/usr/share/quilldex";
    const QDateTime built = QDateTime::currentDateTime().addDays(-10);
    write(installed + "/qd.mdb", "delivered", built);
    write(installed + "/qdhelp.htm", "help 1", built);
    write(installed + "/help/main.png", "picture", built);
    QDir().mkpath(tmp.path() + "/usr/bin");
    const QByteArray saved_home = qgetenv("QUILLDEX_HOME");
    const QByteArray saved_data = qgetenv("XDG_DATA_HOME");
    qunsetenv("QUILLDEX_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(tmp.path() + "/data"));

    const QString dir = resolve_application_directory(tmp.path() + "/usr/bin");
    EXPECT_EQ(dir, tmp.path() + "/data/quilldex");
    EXPECT_EQ(read(dir + "/qd.mdb"), "delivered");
    EXPECT_EQ(read(dir + "/help/main.png"), "picture");
    EXPECT_TRUE(QFileInfo(dir + "/qd.mdb").isWritable());

    write(dir + "/qd.mdb", "the user's rows", QDateTime::currentDateTime());
    write(installed + "/qd.mdb", "delivered 2", built.addDays(5));
    write(installed + "/qdhelp.htm", "help 2", built.addDays(5));
    resolve_application_directory(tmp.path() + "/usr/bin");
    EXPECT_EQ(read(dir + "/qd.mdb"), "the user's rows");
    EXPECT_EQ(read(dir + "/qdhelp.htm"), "help 2");
    EXPECT_EQ(QDir(dir).entryList({"*.part"}, QDir::Files), QStringList());

    qputenv("QUILLDEX_HOME", saved_home);
    if (saved_home.isEmpty()) {
        qunsetenv("QUILLDEX_HOME");
    }
    qputenv("XDG_DATA_HOME", saved_data);
    if (saved_data.isEmpty()) {
        qunsetenv("XDG_DATA_HOME");
    }
}
