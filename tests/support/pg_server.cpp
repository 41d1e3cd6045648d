#include "support/pg_server.h"

#include "catalog/catalog_copy.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr const char* kSuperUser = "quilldex";

QString newest_bin_directory() {
    QDir root(QStringLiteral("/usr/lib/postgresql"));
    QStringList versions = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    std::sort(versions.begin(), versions.end(),
              [](const QString& a, const QString& b) { return a.toDouble() > b.toDouble(); });
    for (const QString& v : versions) {
        if (QFile::exists(root.filePath(v + QStringLiteral("/bin/initdb")))) {
            return root.filePath(v + QStringLiteral("/bin"));
        }
    }
    return QString();
}

}  // namespace

int PgServer::spare_port() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof addr;
    int port = 0;
    if (fd >= 0 && ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) == 0 &&
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len) == 0) {
        port = ntohs(addr.sin_port);
    }
    if (fd >= 0) {
        ::close(fd);
    }
    return port;
}

PgServer& PgServer::shared() {
    static PgServer server;
    return server;
}

bool PgServer::run(const QString& program, const QStringList& args, QString* output) {
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.setWorkingDirectory(dir_->path());
    if (user_.isEmpty()) {
        p.start(bin_ + u'/' + program, args);
    } else {
        p.start(
            QStringLiteral("runuser"),
            QStringList{QStringLiteral("-u"), user_, QStringLiteral("--"), bin_ + u'/' + program} +
                args);
    }
    const bool done = p.waitForFinished(120000);
    const QString out = QString::fromLocal8Bit(p.readAll());
    if (output) {
        *output = out;
    }
    if (!done || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        why_not_ = program + QStringLiteral(" failed: ") + out.right(600);
        return false;
    }
    return true;
}

PgServer::PgServer() {
    bin_ = newest_bin_directory();
    if (bin_.isEmpty()) {
        why_not_ = QStringLiteral("no PostgreSQL server programs under /usr/lib/postgresql");
        return;
    }
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL"))) {
        why_not_ = QStringLiteral("the toolkit's PostgreSQL driver is not installed");
        return;
    }
    dir_ = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/qd-pg-XXXXXX"));
    if (!dir_->isValid()) {
        why_not_ = QStringLiteral("no temporary directory for the server");
        return;
    }
    if (::geteuid() == 0) {
        // The server will not run as root: its files belong to a plain user.
        for (const char* name : {"postgres", "nobody"}) {
            if (const passwd* pw = ::getpwnam(name)) {
                if (::chown(QFile::encodeName(dir_->path()).constData(), pw->pw_uid, pw->pw_gid) ==
                    0) {
                    user_ = QString::fromLatin1(name);
                    break;
                }
            }
        }
        if (user_.isEmpty()) {
            why_not_ = QStringLiteral("running as root, with no plain user to run the server");
            return;
        }
    }
    const QString data = dir_->path() + QStringLiteral("/data");
    if (!run(QStringLiteral("initdb"),
             QStringLiteral("-D %1 -U %2 -A trust -E UTF8 --locale=C.UTF-8 --no-sync")
                 .arg(data, QString::fromLatin1(kSuperUser))
                 .split(u' '))) {
        return;
    }
    const int port = spare_port();
    const QString options =
        QStringLiteral("-h 127.0.0.1 -p %1 -k %2 -c fsync=off").arg(port).arg(dir_->path());
    if (!run(QStringLiteral("pg_ctl"), QStringLiteral("-D %1 -l %2/server.log -w -t 60 start")
                                               .arg(data, dir_->path())
                                               .split(u' ') +
                                           QStringList{QStringLiteral("-o"), options})) {
        QFile log(dir_->path() + "/server.log");
        if (log.open(QIODevice::ReadOnly)) {
            why_not_ += QString::fromLocal8Bit(log.readAll()).right(600);
        }
        return;
    }
    port_ = port;
}

QString PgServer::url(const QString& database) const {
    return QStringLiteral("postgresql://%1@127.0.0.1:%2/%3")
        .arg(QString::fromLatin1(kSuperUser))
        .arg(port_)
        .arg(database);
}

QString PgServer::new_database() {
    const QString name = QStringLiteral("catalog_%1").arg(++databases_);
    const QString connection = QStringLiteral("pg-admin");
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection);
        db.setHostName(QStringLiteral("127.0.0.1"));
        db.setPort(port_);
        db.setUserName(QString::fromLatin1(kSuperUser));
        db.setDatabaseName(QStringLiteral("postgres"));
        QSqlQuery q(db);
        if (!db.open()) {
            error = db.lastError().text();
        } else if (!q.exec(QStringLiteral("create database %1").arg(name))) {
            error = q.lastError().text();
        }
        q.finish();
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    if (!error.isEmpty()) {
        throw std::runtime_error(error.toStdString());
    }
    return url(name);
}

void PgServer::stop() {
    if (port_ > 0) {
        run(QStringLiteral("pg_ctl"),
            QStringLiteral("-D %1/data -m immediate -w stop").arg(dir_->path()).split(u' '));
        port_ = 0;
        why_not_ = QStringLiteral("the server was stopped");
    }
}

PgServer::~PgServer() {
    stop();
}

void PgServerEnvironment::TearDown() {
    PgServer::shared().stop();
}

std::string engine_name(const ::testing::TestParamInfo<Engine>& info) {
    return info.param == Engine::File ? "File" : "Server";
}

void EngineTest::move_to_server(TestHome& home) {
    PgServer& server = PgServer::shared();
    const QString url = server.new_database();
    copy_catalog(home.path(QStringLiteral("qd.mdb")), url, false);
    home.app.database_path = url;
    if (!home.app.database.open(url)) {
        throw std::runtime_error(home.app.database.open_error().toStdString());
    }
}

void EngineTest::SetUp() {
    if (GetParam() == Engine::Server && !PgServer::shared().running()) {
        GTEST_SKIP() << "no database server: " << PgServer::shared().why_not().toStdString();
    }
    home_ = std::make_unique<TestHome>();
    if (GetParam() == Engine::Server) {
        move_to_server(*home_);
    }
}
