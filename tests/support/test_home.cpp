#include "support/test_home.h"

#include "catalog/database.h"
#include "core/catalog_location.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUrl>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <stdexcept>

TestHome::TestHome(bool with_catalog) {
    app.app_dir = tmp_.path();
    app.ini_path = app.app_dir + "/quilldex.ini";
    app.uninstall_ini_path = app.app_dir + "/uninstall.ini";
    app.slide_shows_directory = app.app_dir + "/slide_shows";
    app.settings.set_path(app.ini_path);
    app.last_directory = app.app_dir;
    app.database_path = with_catalog ? path("qd.mdb") : QString();
    if (with_catalog &&
        (!QFile::copy(QD_TEST_CATALOG, app.database_path) ||
         !QFile(app.database_path)
              .setPermissions(QFile(QD_TEST_CATALOG).permissions() | QFileDevice::WriteOwner) ||
         !app.database.open(app.database_path))) {
        throw std::runtime_error("cannot open a copy of the delivered catalog");
    }
}

QString TestHome::write_file(const QString& name, const QByteArray& bytes) const {
    const QString p = path(name);
    QDir().mkpath(QFileInfo(p).absolutePath());
    QFile f(p);
    if (!f.open(QIODevice::WriteOnly)) {
        throw std::runtime_error("cannot write test file");
    }
    f.write(bytes);
    return p;
}

void TestHome::make_raw(const QByteArray& name) {
    const bool directory = name.endsWith('/');
    const QByteArray full = QFile::encodeName(tmp_.path()) + '/' + name.chopped(directory ? 1 : 0);
    const char* p = full.constData();
    if ((directory ? ::mkdir(p, 0755) : ::close(::open(p, O_CREAT | O_WRONLY, 0644))) != 0) {
        throw std::runtime_error("cannot make a raw test name");
    }
    raw_.push_back(full);
}

TestHome::~TestHome() {
    for (auto it = raw_.rbegin(); it != raw_.rend(); ++it) {
        std::remove(it->constData());
    }
}

QString TestHome::write_image(const QString& name, int width, int height, QColor color) const {
    const QString p = path(name);
    QDir().mkpath(QFileInfo(p).absolutePath());
    QImage img(width, height, QImage::Format_RGB32);
    img.fill(color);
    for (int y = 0; y < height; y += 7) {
        for (int x = 0; x < width; ++x) {
            img.setPixel(x, y, qRgb((x * 3) & 255, (y * 5) & 255, 90));
        }
    }
    const QString suffix = QFileInfo(p).suffix().toLower();
    const char* format = suffix == QLatin1String("jpg") ? "JPEG" : nullptr;
    if (!img.save(p, format)) {
        throw std::runtime_error("cannot write test image");
    }
    return p;
}

QByteArray read_bytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QString read_text(const QString& path) {
    return QString::fromUtf8(read_bytes(path));
}

QStringList query_column(AppState& app, const QString& sql) {
    static std::atomic<int> n{0};
    const QString name = QString("test-query-%1").arg(++n);
    const QUrl url(app.database_path);
    const bool server = is_server_catalog(app.database_path);
    QStringList out;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(server ? "QPSQL" : "QSQLITE", name);
        db.setHostName(url.host());
        db.setPort(url.port());
        db.setUserName(url.userName());
        db.setDatabaseName(server ? url.path().mid(1) : app.database_path);
        QSqlQuery q(db);
        if (db.open() && q.exec(sql)) {
            while (q.next()) {
                out << (q.value(0).isNull() ? "<null>" : q.value(0).toString());
            }
        }
    }
    QSqlDatabase::removeDatabase(name);
    return out;
}
