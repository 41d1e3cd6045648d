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

#include <cstdio>

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

// Runs one statement as the superuser on the server at `port`; the error
// text, or "" when it ran.
QString admin(int port, const QString& sql) {
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("pg-admin"));
        db.setHostName(QStringLiteral("127.0.0.1"));
        db.setPort(port);
        db.setUserName(QString::fromLatin1(kSuperUser));
        db.setDatabaseName(QStringLiteral("postgres"));
        db.setConnectOptions(QStringLiteral("connect_timeout=2"));
        QSqlQuery q(db);
        if (!db.open()) {
            error = db.lastError().text();
        } else if (!q.exec(sql)) {
            error = q.lastError().text();
        }
        q.finish();
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("pg-admin"));
    return error;
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

namespace {
bool g_created = false;
}

PgServer& PgServer::shared() {
    static PgServer server;
    if (!g_created) {
        g_created = true;
        // A forced programs directory stands for a machine with or without
        // a server and so never joins the run's server.
        if (!qEnvironmentVariableIsSet("QD_TEST_PG_BIN") &&
            server.adopt(QStringLiteral(QD_TEST_PG_STATE))) {
            return server;
        }
        server.start();
        if (server.running()) {
            server.watch(::getpid());
        }
    }
    return server;
}

bool PgServer::created() {
    return g_created;
}

QStringList PgServer::command(const QString& program, const QStringList& args) const {
    QStringList c;
    if (!user_.isEmpty()) {
        c << QStringLiteral("runuser") << QStringLiteral("-u") << user_ << QStringLiteral("--");
    }
    return c << bin_ + u'/' + program << args;
}

bool PgServer::run(const QString& program, const QStringList& args) {
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.setWorkingDirectory(dir_);
    const QStringList c = command(program, args);
    p.start(c.first(), c.mid(1));
    const bool done = p.waitForFinished(120000);
    const QString out = QString::fromLocal8Bit(p.readAll());
    if (!done || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        why_not_ = program + QStringLiteral(" failed: ") + out.right(600);
        return false;
    }
    return true;
}

PgServer::PgServer() = default;

bool PgServer::adopt(const QString& state_file) {
    QFile state(state_file);
    if (!state.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QStringList lines = QString::fromUtf8(state.readAll()).split(u'\n');
    if (lines.size() < 2 || lines.at(0).toInt() <= 0) {
        return false;
    }
    // A state file outlives a server killed with its run: only one that
    // answers is taken.
    const bool answers = admin(lines.at(0).toInt(), QStringLiteral("select 1")).isEmpty();
    if (answers) {
        port_ = lines.at(0).toInt();
        owned_ = false;
    }
    return answers;
}

void PgServer::watch(pid_t owner) {
    // Stops the server once its owner is gone, so that a test killed
    // part-way, or a run stopped before its clean-up step, leaves no server
    // behind.
    const QString stop = command(QStringLiteral("pg_ctl"),
                                 {QStringLiteral("-D"), dir_ + QStringLiteral("/data"),
                                  QStringLiteral("-m"), QStringLiteral("immediate"),
                                  QStringLiteral("stop")})
                             .join(u' ');
    QProcess watchdog;
    watchdog.setProgram(QStringLiteral("sh"));
    watchdog.setArguments(
        {QStringLiteral("-c"),
         QStringLiteral("while kill -0 %1 2>/dev/null; do sleep 1; done; %2; rm -rf %3")
             .arg(owner)
             .arg(stop, dir_)});
    watchdog.setStandardOutputFile(QProcess::nullDevice());
    watchdog.setStandardErrorFile(QProcess::nullDevice());
    watchdog.startDetached();
}

void PgServer::start() {
    const QByteArray forced = qgetenv("QD_TEST_PG_BIN");
    bin_ = forced.isEmpty() ? newest_bin_directory() : QString::fromLocal8Bit(forced);
    if (!QFile::exists(bin_ + QStringLiteral("/initdb"))) {
        bin_.clear();
    }
    if (bin_.isEmpty()) {
        why_not_ = QStringLiteral("no PostgreSQL server programs under /usr/lib/postgresql");
        return;
    }
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL"))) {
        why_not_ = QStringLiteral("the toolkit's PostgreSQL driver is not installed");
        return;
    }
    QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/qd-pg-XXXXXX"));
    dir.setAutoRemove(false);
    dir_ = dir.path();
    if (!dir.isValid()) {
        why_not_ = QStringLiteral("no temporary directory for the server");
        return;
    }
    if (::geteuid() == 0) {
        // The server will not run as root: its files belong to a plain user.
        for (const char* name : {"postgres", "nobody"}) {
            if (const passwd* pw = ::getpwnam(name)) {
                if (::chown(QFile::encodeName(dir_).constData(), pw->pw_uid, pw->pw_gid) ==
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
    const QString data = dir_ + QStringLiteral("/data");
    if (!run(QStringLiteral("initdb"),
             QStringLiteral("-D %1 -U %2 -A trust -E UTF8 --locale=C.UTF-8 --no-sync")
                 .arg(data, QString::fromLatin1(kSuperUser))
                 .split(u' '))) {
        return;
    }
    const int port = spare_port();
    const QString options =
        QStringLiteral("-h 127.0.0.1 -p %1 -k %2 -c fsync=off").arg(port).arg(dir_);
    if (!run(QStringLiteral("pg_ctl"), QStringLiteral("-D %1 -l %2/server.log -w -t 60 start")
                                               .arg(data, dir_)
                                               .split(u' ') +
                                           QStringList{QStringLiteral("-o"), options})) {
        QFile log(dir_ + "/server.log");
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
    // Programs share the run's server: the process number keeps their
    // databases apart.
    const QString name = QStringLiteral("catalog_%1_%2").arg(::getpid()).arg(++databases_);
    const QString error = admin(port_, QStringLiteral("create database %1").arg(name));
    if (!error.isEmpty()) {
        throw std::runtime_error(error.toStdString());
    }
    return url(name);
}

void PgServer::stop() {
    if (!owned_) {
        return;
    }
    if (port_ > 0) {
        run(QStringLiteral("pg_ctl"),
            QStringLiteral("-D %1/data -m immediate -w stop").arg(dir_).split(u' '));
        port_ = 0;
        why_not_ = QStringLiteral("the server was stopped");
    }
    if (!dir_.isEmpty()) {
        QDir(dir_).removeRecursively();
        dir_.clear();
    }
}

PgServer::~PgServer() {
    stop();
}

int PgServer::start_for_run(const QString& state_file) {
    QFile::remove(state_file);
    PgServer server;
    server.start();
    if (!server.running()) {
        // The tests that need it find no state and say why they skip.
        std::fprintf(stderr, "no database server: %s\n", qPrintable(server.why_not()));
        return 0;
    }
    QFile state(state_file);
    if (!state.open(QIODevice::WriteOnly)) {
        return 1;
    }
    state.write(QStringLiteral("%1\n%2\n%3\n%4\n")
                    .arg(server.port_)
                    .arg(server.dir_, server.user_, server.bin_)
                    .toUtf8());
    server.owned_ = false;  // left running for the run
    // The run is the test driver that started this step.
    server.watch(::getppid());
    return 0;
}

int PgServer::stop_for_run(const QString& state_file) {
    QFile state(state_file);
    if (!state.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QStringList lines = QString::fromUtf8(state.readAll()).split(u'\n');
    state.remove();
    if (lines.size() >= 4) {
        PgServer server;
        server.port_ = lines.at(0).toInt();
        server.dir_ = lines.at(1);
        server.user_ = lines.at(2);
        server.bin_ = lines.at(3);
        server.stop();
    }
    return 0;
}

void PgServerEnvironment::TearDown() {
    // Only a program that used the server has one to stop.
    if (PgServer::created()) {
        PgServer::shared().stop();
    }
}

std::string engine_name(const ::testing::TestParamInfo<Engine>& info) {
    return info.param == Engine::File ? "File" : "Server";
}

void EngineTest::move_to_server(TestHome& home) {
    PgServer& server = PgServer::shared();
    const QString url = server.new_database();
    copy_catalog(home.path(QStringLiteral("qd.mdb")), url, false);
    home.app.database_path = url;
    // As "Select Database" leaves it: the command line follows the setting.
    home.app.settings.write(QStringLiteral("Current"), QStringLiteral("Database"), url);
    if (!home.app.database.open(url)) {
        throw std::runtime_error(home.app.database.open_error().toStdString());
    }
}

void EngineTest::SetUp() {
    if (GetParam() == Engine::Server && !PgServer::shared().running()) {
        GTEST_SKIP() << "no database server: " << PgServer::shared().why_not().toStdString();
    }
    home_ = new_home();
}

std::unique_ptr<TestHome> EngineTest::new_home() const {
    auto home = std::make_unique<TestHome>();
    if (GetParam() == Engine::Server) {
        move_to_server(*home);
    }
    return home;
}
