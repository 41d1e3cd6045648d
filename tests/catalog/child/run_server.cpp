// Starts or stops the database server that one CTest run shares.
// Usage: pg_run_server start|stop STATE_FILE

#include "support/pg_server.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc != 3 || (std::strcmp(argv[1], "start") != 0 && std::strcmp(argv[1], "stop") != 0)) {
        std::fprintf(stderr, "usage: pg_run_server start|stop STATE_FILE\n");
        return 2;
    }
    const QString state = QString::fromLocal8Bit(argv[2]);
    return std::strcmp(argv[1], "start") == 0 ? PgServer::start_for_run(state)
                                                : PgServer::stop_for_run(state);
}
