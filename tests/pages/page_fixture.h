#pragma once

#include "pages/template_expander.h"
#include "pages/template_store.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

// Shared set-up of the page tests: a test home with a target directory, a
// source directory of files, and templates written straight into its catalog.
struct PageFixture {
    PageFixture();

    // Adds or replaces the row of a template.
    void put_template(const TemplateSections& t);
    // Adds or replaces a file's row of the catalog (Null for an empty field).
    void put_file_row(const QString& path, const QString& title, const QString& description,
                      const QString& catalog);
    // Expands `name` over `files` into target/out.htm and returns the page.
    QString expand(const QString& name, const QStringList& files, const QString& max = QString(),
                   const QString& preview = QStringLiteral("no"),
                   const QStringList& links = QStringList(4));

    TestHome home;
    QString source;  // a directory of source files
    QString target;  // the target directory, without a closing "/"
    QString output;  // target/out.htm
    PageOptions page;
};

// The pixel size of an image file (invalid when unreadable).
QSize image_size(const QString& path);
