#include "image_samples.h"

#include "core/item_list.h"
#include "core/run_error.h"
#include "imaging/image_control.h"
#include "imaging/print_device.h"
#include "imaging/print_job.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

namespace {

// A port nobody listens on now, from the system's own choice.
int spare_port() {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof a;
    int port = 0;
    if (bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0 &&
        getsockname(fd, reinterpret_cast<sockaddr*>(&a), &len) == 0) {
        port = ntohs(a.sin_port);
    }
    close(fd);
    return port;
}

// A print server of its own for one test: cupsd on a spare loopback port,
// its files in a temporary directory, with one cups-pdf queue.
class PrivateCups {
public:
    static constexpr const char* kPpd = "/usr/share/ppd/cups-pdf/CUPS-PDF_opt.ppd";

    // Why the server cannot run here; "" once it runs with its queue.
    QString start(const QString& queue) {
        for (const char* tool : {"cupsd", "lpadmin", "lpstat", "cupsdisable"}) {
            if (path_of(tool).isEmpty()) {
                return QStringLiteral("%1 is not installed").arg(QLatin1String(tool));
            }
        }
        if (!QFile::exists(QLatin1String(kPpd))) {
            return QStringLiteral("printer-driver-cups-pdf is not installed");
        }
        port_ = spare_port();
        const QString d = dir_.path();
        for (const char* sub : {"conf", "spool", "tmp", "cache", "state", "log"}) {
            QDir().mkpath(d + u'/' + QLatin1String(sub));
        }
        // The filters run as the server's own user, which must write here.
        QFile::setPermissions(d + "/tmp", QFileDevice::Permissions(0x7777));
        write_bytes(d + "/conf/cups-files.conf",
                    QStringLiteral("ServerRoot %1/conf\nRequestRoot %1/spool\nTempDir %1/tmp\n"
                                   "CacheDir %1/cache\nStateDir %1/state\n"
                                   "AccessLog %1/log/access_log\nErrorLog %1/log/error_log\n"
                                   "PageLog %1/log/page_log\nPrintcap %1/printcap\n"
                                   "ServerBin /usr/lib/cups\nDataDir /usr/share/cups\n")
                        .arg(d)
                        .toUtf8());
        write_bytes(d + "/conf/cupsd.conf",
                    QStringLiteral("Listen 127.0.0.1:%1\nLogLevel info\nFatalErrors none\n"
                                   "Browsing Off\nWebInterface No\nDefaultAuthType None\n"
                                   "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
                                   "<Policy default>\n  <Limit All>\n    Order deny,allow\n"
                                   "  </Limit>\n</Policy>\n")
                        .arg(port_)
                        .toUtf8());
        server_.setProcessChannelMode(QProcess::MergedChannels);
        server_.start(QStringLiteral("cupsd"),
                      {"-f", "-c", d + "/conf/cupsd.conf", "-s", d + "/conf/cups-files.conf"});
        if (!server_.waitForStarted(5000)) {
            return QStringLiteral("cupsd did not start: ") + server_.errorString();
        }
        bool running = false;
        for (int i = 0; i < 50 && !running; ++i) {
            QThread::msleep(100);
            running = tool("lpstat", {"-r"}).contains(QLatin1String("is running"));
        }
        if (!running) {
            return QStringLiteral("cupsd did not answer on port %1: %2")
                .arg(port_)
                .arg(QString::fromLocal8Bit(server_.readAll()));
        }
        // The queue takes jobs and holds them: what reaches it is counted
        // there, and nothing is written outside this directory.
        const QString added = tool("lpadmin", {"-p", queue, "-E", "-v", "cups-pdf:/", "-P", kPpd});
        tool("cupsdisable", {queue});
        if (!tool("lpstat", {"-p", queue}).contains(QLatin1String("disabled"))) {
            return QStringLiteral("the queue could not be added: ") + added;
        }
        return {};
    }

    QString server() const { return QStringLiteral("127.0.0.1:%1").arg(port_); }

    // Runs a client tool against this server; its output.
    QString tool(const char* program, const QStringList& args) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("CUPS_SERVER"), server());
        p.setProcessEnvironment(env);
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(path_of(program), args);
        p.waitForFinished(20000);
        return QString::fromLocal8Bit(p.readAll());
    }

    ~PrivateCups() {
        server_.terminate();
        if (!server_.waitForFinished(5000)) {
            server_.kill();
            server_.waitForFinished(2000);
        }
    }

private:
    // The server's tools live in sbin, which a plain user's PATH may lack.
    static QString path_of(const char* program) {
        return QStandardPaths::findExecutable(QLatin1String(program), {"/usr/sbin", "/usr/bin"});
    }
    QTemporaryDir dir_;
    QProcess server_;
    int port_ = 0;
};

// The Printing tab's list and viewer without a window: a job run on a thread
// of its own, where the print system's connection starts afresh.
class ListPanel : public PrintPanel {
public:
    explicit ListPanel(const QStringList& paths) { list_.set_items(paths); }
    ItemList& list() override { return list_; }
    ImageControl& viewer() override { return viewer_; }
    void show_row(int row) override {
        passed_over([&] { viewer_.set_file_name(list_.item(row)); });
    }
    void fit_viewer() override {}
    void set_viewer_visible(bool) override {}
    void set_printing(bool) override {}

private:
    ItemList list_;
    ImageControl viewer_;
};

}  // namespace

// Five pictures at four a page reach a real print queue as two jobs, each
// waiting there as one document.
TEST(CupsPrinting, AFourUpJobOfFivePicturesReachesTheQueueAsTwoDocuments) {
    PrivateCups cups;
    if (const QString why = cups.start(QStringLiteral("quilldex_pdf")); !why.isEmpty()) {
        GTEST_SKIP() << "no print server: " << why.toStdString();
    }
    TestHome home;
    QStringList paths;
    for (int i = 0; i < 5; ++i) {
        paths << home.write_image(QString("pics/p%1.png").arg(i), 60 + i, 40);
    }
    const QByteArray saved_server = qgetenv("CUPS_SERVER");
    qputenv("CUPS_SERVER", cups.server().toLocal8Bit());
    QStringList names;
    PrintOutcome outcome;
    QString error;
    std::thread job([&] {
        try {
            names = printer_names();
            ListPanel panel(paths);
            PrintChoices c;
            c.layout = QStringLiteral("4 images/page");
            c.portrait = true;
            c.quality = QStringLiteral("Draft");
            QtPrintDevice device(QStringLiteral("quilldex_pdf"), home.dialogs,
                                 home.app.last_directory);
            outcome = print_images(home.ctx, c, panel, device);
        } catch (const RunError& e) {
            error = e.text();
        }
    });
    job.join();
    if (saved_server.isNull()) {
        qunsetenv("CUPS_SERVER");
    } else {
        qputenv("CUPS_SERVER", saved_server);
    }
    EXPECT_EQ(error, "");
    EXPECT_EQ(names, QStringList({"quilldex_pdf", "Print to PDF"}));
    EXPECT_EQ(outcome.printed, 5);
    EXPECT_TRUE(home.dialogs.asked().empty());
    QStringList jobs;
    for (int i = 0; i < 50 && jobs.size() < 2; ++i) {
        jobs = cups.tool("lpstat", {"-o", "quilldex_pdf"}).split(u'\n', Qt::SkipEmptyParts);
        QThread::msleep(100);
    }
    EXPECT_EQ(jobs.size(), 2) << jobs.join(u'\n').toStdString();
}
