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
    if (!tmp_.isValid()) {
        throw std::runtime_error("no temporary directory");
    }
    app.app_dir = tmp_.path();
    app.ini_path = app.app_dir + QStringLiteral("/quilldex.ini");
    app.uninstall_ini_path = app.app_dir + QStringLiteral("/uninstall.ini");
    app.slide_shows_directory = app.app_dir + QStringLiteral("/slide_shows");
    app.settings.set_path(app.ini_path);
    app.last_directory = app.app_dir;
    if (with_catalog) {
        const QString db = app.app_dir + QStringLiteral("/qd.mdb");
        if (!QFile::copy(QStringLiteral(QD_TEST_CATALOG), db)) {
            throw std::runtime_error("cannot copy the delivered catalog");
        }
        QFile(db).setPermissions(QFile(db).permissions() | QFileDevice::WriteOwner);
        app.database_path = db;
        if (!app.database.open(db)) {
            throw std::runtime_error("cannot open the catalog copy");
        }
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
    QByteArray full = QFile::encodeName(tmp_.path()) + '/' + name;
    const bool directory = full.endsWith('/');
    if (directory) {
        full.chop(1);
    }
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

QStringList query_column(AppState& app, const QString& sql) {
    static std::atomic<int> n{0};
    const QString name = QStringLiteral("test-query-%1").arg(++n);
    QStringList out;
    {
        QSqlDatabase db;
        if (is_server_catalog(app.database_path)) {
            const QUrl url(app.database_path);
            db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
            db.setHostName(url.host());
            db.setPort(url.port());
            db.setUserName(url.userName());
            db.setDatabaseName(url.path().mid(1));
        } else {
            db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(app.database_path);
        }
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(sql)) {
                while (q.next()) {
                    out << (q.value(0).isNull() ? QStringLiteral("<null>") : q.value(0).toString());
                }
            }
        }
    }
    QSqlDatabase::removeDatabase(name);
    return out;
}
