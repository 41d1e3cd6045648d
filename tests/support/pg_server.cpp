#include "support/pg_server.h"

#include "catalog/catalog_copy.h"

#include <QDir>
#include <QProcess>
#include <QSqlDatabase>
#include <QTemporaryDir>

#include <arpa/inet.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>

namespace {

constexpr const char* kSuperUser = "quilldex";
bool g_created = false;

// The run's state: the port, the programs directory and the stop command.
QStringList state_lines(const QString& state_file) {
    return read_text(state_file).split(u'\n', Qt::SkipEmptyParts);
}

}  // namespace

int PgServer::spare_port() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t len = sizeof addr;
    const bool bound = ::bind(fd, reinterpret_cast<sockaddr*>(&addr), len) == 0 &&
                       ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len) == 0;
    ::close(fd);
    return bound ? ntohs(addr.sin_port) : 0;
}

PgServer& PgServer::shared() {
    static PgServer server;
    if (!g_created) {
        g_created = true;
        // A forced programs directory stands for a machine with or without
        // a server and so never joins the run's server. A state file
        // outlives a server killed with its run: only one that answers is taken.
        const QStringList f = state_lines(QD_TEST_PG_STATE);
        if (!qEnvironmentVariableIsSet("QD_TEST_PG_BIN") && f.size() >= 2) {
            server.bin_ = f[1];
            server.port_ = f[0].toInt();
            if (server.run("pg_isready", {"-h", "127.0.0.1", "-p", f[0]})) {
                return server;
            }
        }
        server.start();
        if (server.running()) {
            server.watch(::getpid());
        }
    }
    return server;
}

QStringList PgServer::command(const QString& program, const QStringList& args) const {
    QStringList c = user_.isEmpty() ? QStringList() : QStringList{"runuser", "-u", user_, "--"};
    return c << bin_ + u'/' + program << args;
}

bool PgServer::run(const QString& program, const QStringList& args) {
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    QStringList c = command(program, args);
    p.start(c.takeFirst(), c);
    const bool done = p.waitForFinished(120000);
    if (!done || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        why_not_ = program + " failed: " + QString::fromLocal8Bit(p.readAll()).right(600);
        return false;
    }
    return true;
}

QString PgServer::stop_command() const {
    return command("pg_ctl", {"-D", dir_ + "/data", "-m", "immediate", "-w", "stop"}).join(u' ') +
           "; rm -rf " + dir_;
}

void PgServer::watch(int owner) {
    // Stops the server once its owner is gone, so that a test killed
    // part-way, or a run stopped before its clean-up step, leaves no server
    // behind.
    QProcess::startDetached("sh", {"-c", QString("exec >/dev/null 2>&1; while kill -0 %1; do "
                                                 "sleep 1; done; ")
                                                 .arg(owner) +
                                             stop_command()});
}

void PgServer::start() {
    port_ = 0;
    const QByteArray forced = qgetenv("QD_TEST_PG_BIN");
    // The newest version installed.
    const QStringList versions =
        QDir("/usr/lib/postgresql").entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Reversed);
    bin_ = !forced.isEmpty()    ? QString::fromLocal8Bit(forced)
           : versions.isEmpty() ? QString()
                                : "/usr/lib/postgresql/" + versions.first() + "/bin";
    if (!QFile::exists(bin_ + "/initdb")) {
        why_not_ = "no PostgreSQL server programs under /usr/lib/postgresql";
        return;
    }
    if (!QSqlDatabase::isDriverAvailable("QPSQL")) {
        why_not_ = "the toolkit's PostgreSQL driver is not installed";
        return;
    }
    QTemporaryDir dir(QDir::tempPath() + "/qd-pg-XXXXXX");
    dir.setAutoRemove(false);
    dir_ = dir.path();
    // The server will not run as root: its files belong to a plain user.
    const passwd* pw = ::getpwnam("postgres");
    pw = pw ? pw : ::getpwnam("nobody");
    if (::geteuid() == 0) {
        if (!pw || ::chown(QFile::encodeName(dir_).constData(), pw->pw_uid, pw->pw_gid) != 0) {
            why_not_ = "running as root, with no plain user to run the server";
            return;
        }
        user_ = pw->pw_name;
    }
    const int port = spare_port();
    const QString options = QString("-h 127.0.0.1 -p %1 -k %2 -c fsync=off").arg(port).arg(dir_);
    if (run("initdb", QString("-D %1/data -U %2 -A trust -E UTF8 --locale=C.UTF-8 --no-sync")
                          .arg(dir_, kSuperUser)
                          .split(u' ')) &&
        run("pg_ctl", QString("-D %1/data -l %1/server.log -w -t 60 start -o").arg(dir_).split(u' ')
                          << options)) {
        port_ = port;
    }
}

QString PgServer::new_database() {
    // Programs share the run's server: the process number keeps their
    // databases apart.
    const QString name = QString("catalog_%1_%2").arg(::getpid()).arg(++databases_);
    if (!run("psql", {"-X", "-h", "127.0.0.1", "-p", QString::number(port_), "-U", kSuperUser, "-d",
                      "postgres", "-c", "create database " + name})) {
        throw std::runtime_error(why_not_.toStdString());
    }
    return QString("postgresql://%1@127.0.0.1:%2/%3").arg(kSuperUser).arg(port_).arg(name);
}

QString PgServer::new_catalog(const QString& file) {
    const QString url = new_database();
    copy_catalog(file, url, false);
    return url;
}

void PgServer::stop() {
    // Only a server this program started, not the run's, has a directory here.
    if (!dir_.isEmpty()) {
        QProcess::execute("sh", {"-c", stop_command()});
        dir_.clear();
        port_ = 0;
    }
}

int PgServer::start_for_run(const QString& state_file) {
    PgServer server;
    server.start();
    QFile state(state_file);
    state.remove();
    if (!server.running()) {
        // The tests that need it find no state and say why they skip.
        std::fprintf(stderr, "no database server: %s\n", qPrintable(server.why_not()));
        return 0;
    }
    // Left running for the run, which is the test driver that started this step.
    server.watch(::getppid());
    const QString stop = server.stop_command();
    server.dir_.clear();
    if (!state.open(QIODevice::WriteOnly)) {
        return 1;
    }
    state.write(QString("%1\n%2\n%3\n").arg(server.port_).arg(server.bin_, stop).toUtf8());
    return 0;
}

int PgServer::stop_for_run(const QString& state_file) {
    const QStringList f = state_lines(state_file);
    QFile::remove(state_file);
    return f.size() >= 3 ? QProcess::execute("sh", {"-c", f[2]}) : 0;
}

void PgServerEnvironment::TearDown() {
    // Only a program that used the server has one to stop.
    if (g_created) {
        PgServer::shared().stop();
    }
}

void EngineTest::SetUp() {
    if (GetParam() == Engine::Server) {
        QD_NEED_SERVER();
    }
    home_ = new_home();
}

std::unique_ptr<TestHome> EngineTest::new_home() const {
    auto home = std::make_unique<TestHome>();
    if (GetParam() == Engine::Server) {
        // As catalog-copy and "Select Database" leave it: the command line
        // follows the setting.
        const QString url = PgServer::shared().new_catalog(home->path("qd.mdb"));
        home->app.database_path = url;
        home->app.settings.write("Current", "Database", url);
        if (!home->app.database.open(url)) {
            throw std::runtime_error(home->app.database.open_error().toStdString());
        }
    }
    return home;
}
