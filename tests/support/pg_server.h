#pragma once

#include "support/test_home.h"

#include <gtest/gtest.h>

#include <memory>

// A real database server for the tests of catalogs on a server, on the
// loopback address and a spare port, in a temporary directory, as a plain
// user. Under CTest a set-up step starts one for the whole run and leaves a
// state file for the tests and the clean-up step. A test program run by hand
// starts its own, with a watchdog that stops it when the program ends.
class PgServer {
public:
    static PgServer& shared();
    ~PgServer() { stop(); }

    // The run's server, for the set-up and clean-up steps.
    static int start_for_run(const QString& state_file);
    static int stop_for_run(const QString& state_file);

    bool running() const { return port_ > 0; }
    // Why the server could not start, for a skip.
    QString why_not() const { return why_not_; }
    // Makes a new empty database and returns its URL.
    QString new_database();
    // Makes a new database holding the rows of the catalog file; returns its URL.
    QString new_catalog(const QString& file);
    // A port on the loopback address where nothing listens.
    static int spare_port();
    void stop();

private:
    PgServer() = default;
    void start();
    // Stops the server and removes its directory, as a shell command.
    QString stop_command() const;
    void watch(int owner);
    // A server program with its arguments, run as the server's user.
    QStringList command(const QString& program, const QStringList& args) const;
    bool run(const QString& program, const QStringList& args);
    QString bin_, user_;
    QString dir_;  // the data directory's parent; empty where this is not the owner
    int port_ = 0;
    int databases_ = 0;
    QString why_not_;
};

// Stops the shared server after the last test of the program.
class PgServerEnvironment : public ::testing::Environment {
public:
    void TearDown() override;
};

// Skips a test that needs the server, with the reason, where none runs.
#define QD_NEED_SERVER()               \
    if (!PgServer::shared().running()) \
    GTEST_SKIP() << "no database server: " << PgServer::shared().why_not().toStdString()

// The engines a catalog test runs on.
enum class Engine { File, Server };

// A test run once on a catalog file and once on a server catalog that holds
// the same delivered rows. Skipped, with the reason, where no server starts.
class EngineTest : public ::testing::TestWithParam<Engine> {
protected:
    void SetUp() override;
    // Another home with its catalog on this test's engine.
    std::unique_ptr<TestHome> new_home() const;
    std::unique_ptr<TestHome> home_;
};

#define QD_ON_BOTH_ENGINES(Suite)                                        \
    INSTANTIATE_TEST_SUITE_P(                                            \
        Engines, Suite, ::testing::Values(Engine::File, Engine::Server), \
        [](const auto& info) { return info.param == Engine::File ? "File" : "Server"; })
