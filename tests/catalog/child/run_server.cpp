// Starts or stops the database server that one CTest run shares.
// Usage: pg_run_server start|stop STATE_FILE

#include "support/pg_server.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QString how = argc == 3 ? argv[1] : "";
    if (how != "start" && how != "stop") {
        std::fprintf(stderr, "usage: pg_run_server start|stop STATE_FILE\n");
        return 2;
    }
    return how == "start" ? PgServer::start_for_run(argv[2]) : PgServer::stop_for_run(argv[2]);
}
