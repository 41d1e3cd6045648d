#include "pages/template_commands.h"

#include "catalog/database.h"
#include "core/file_helpers.h"
#include "core/run_error.h"
#include "imaging/numeric_text.h"
#include "pages/tag_text.h"

#include <QFile>

#include <algorithm>
#include <cmath>

namespace {

const QString kCurrent = QStringLiteral("Current");
// The page engine's file list is a list box: it holds at most this many rows.
constexpr int kMaxListRows = 32767;

}  // namespace

QStringList editor_tags() {
    return {QStringLiteral("[background]"),
            QStringLiteral("[bgcolor]"),
            QStringLiteral("[catalog]"),
            QStringLiteral("[counter]"),
            QStringLiteral("[date]"),
            QStringLiteral("[description]"),
            QStringLiteral("[filename]"),
            QStringLiteral("[filepath]"),
            QStringLiteral("[firstslide]"),
            QStringLiteral("[filesize]"),
            QStringLiteral("[href_local_filename]"),
            QStringLiteral("[href_web_filename]"),
            QStringLiteral("[imgpixel]"),
            QStringLiteral("[imgpixelh]"),
            QStringLiteral("[imgpixelw]"),
            QStringLiteral("[imgsrc]"),
            QStringLiteral("[include=]"),
            QStringLiteral("[lastslide]"),
            QStringLiteral("[leftframefilename]"),
            QStringLiteral("[nextslide]"),
            QStringLiteral("[previousslide]"),
            QStringLiteral("[rightframefilename]"),
            QStringLiteral("[slidenav]"),
            QStringLiteral("[textcolor]"),
            QStringLiteral("[thumbnail]"),
            QStringLiteral("[timgsrc]"),
            QStringLiteral("[time]"),
            QStringLiteral("[title]"),
            QStringLiteral("[topframefilename]")};
}

QStringList notepad_tags() {
    QStringList tags = editor_tags();
    for (const char* size_tag : {"[filesize]", "[imgpixel]", "[imgpixelh]", "[imgpixelw]"}) {
        tags.removeOne(QLatin1String(size_tag));
    }
    return tags;
}

bool save_on_close(AppState& app) {
    return app.settings.read(kCurrent, QStringLiteral("Save Template On Close"))
        .toLower()
        .contains(u'y');
}

void set_save_on_close(AppState& app, bool on) {
    app.settings.write(kCurrent, QStringLiteral("Save Template On Close"),
                       on ? QStringLiteral("Yes") : QStringLiteral("No"));
}

QString copy_template(Context& ctx, const TemplateSections& fields, QString& previous_answer) {
    QString answer = previous_answer;
    for (;;) {
        answer = ctx.dialogs.input(QStringLiteral("What is the name for the new template?"),
                                   QStringLiteral("New Template"), answer);
        if (!answer.contains(u'\'')) {
            break;
        }
        ctx.dialogs.info(QStringLiteral(
            "Single apostrophes are not allowed in the title of a template.  Please enter a "
            "different title."));
    }
    previous_answer = answer;
    if (answer.isEmpty()) {
        return QString();
    }
    const QString description =
        ctx.dialogs.input(QStringLiteral("What is the description for the new template?"),
                          QStringLiteral("New Template"));
    AppState& app = ctx.app;
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, template_row_sql(fields.name));
    if (rs.record_count() < 1) {
        rs.close();
        return QString();
    }
    // The sections as shown, with their unsaved edits, under the new name.
    TemplateSections copy = fields;
    copy.description = description;
    rs.add_new();
    rs.set_field(QStringLiteral("ttype"), QStringLiteral("C"));
    rs.set_field(QStringLiteral("tname"), answer.left(100));
    set_template_fields(rs, copy);
    rs.update();
    rs.close();
    return answer;
}

bool delete_template_row(Context& ctx, const QString& name) {
    if (!ctx.dialogs.ask_yes_no(QStringLiteral("Are you sure you want to delete this template?"))) {
        return false;
    }
    AppState& app = ctx.app;
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, template_row_sql(name));
    bool deleted = false;
    if (rs.record_count() > 0) {
        rs.delete_row();
        deleted = true;
    }
    rs.close();
    return deleted;
}

void preview_template(Context& ctx, const PageOptions& page, const TemplateSections& fields,
                      const QString& output_path) {
    AppState& app = ctx.app;
    const QString count =
        app.settings.read(kCurrent, QStringLiteral("Preview Image Count"), QStringLiteral("5"));
    const QString answer =
        ctx.dialogs.input(QStringLiteral("How many images do you want to use in the preview?"),
                          QStringLiteral("Image Count"), count);
    const double wanted = val_of_text(answer);
    if (wanted > 0) {
        app.file_list.clear();
        QString image = app.settings.read(kCurrent, QStringLiteral("Preview Image"));
        if (!file_exists(image)) {
            ctx.dialogs.info(QStringLiteral("The preview image, ") + image +
                             QStringLiteral(", does not exist.  Select a new 'Preview Image' using "
                                            "the 'Options' tab."));
        } else {
            // One image stands for every file of the page.
            const int rows = static_cast<int>(std::min<double>(std::floor(wanted), kMaxListRows));
            QStringList rows_of_image;
            rows_of_image.reserve(rows);
            for (int i = 0; i < rows; ++i) {
                rows_of_image << image;
            }
            app.file_list.add_many(rows_of_image);
        }
        app.settings.write(kCurrent, QStringLiteral("Preview Image Count"), answer);
    }
    expand_template(ctx, page, fields.name, output_path, QString(), QStringLiteral("0"),
                    QStringLiteral("0"), QStringLiteral("yes"), QString(), QString(), QString(),
                    QString(), &fields);
}

QString template_listing(const TemplateSections& fields, const QDateTime& when) {
    const QString rule = QString(80, u'-');
    QStringList lines;
    lines << QStringLiteral("Template Name:  ") + fields.name << QString()
          << when.toString(QStringLiteral("MM-dd-yyyy")) + QStringLiteral(" - ") +
                 when.toString(QStringLiteral("HH:mm:ss"))
          << rule;
    const std::pair<const char*, const QString*> sections[] = {
        {"Header Section", &fields.header},        {"Pre-File Section", &fields.pre_image},
        {"File(1) Section", &fields.image1},       {"File(2) Section", &fields.image2},
        {"Post-File Section", &fields.post_image}, {"Footer Section", &fields.footer}};
    for (const auto& [heading, text] : sections) {
        lines << QLatin1String(heading) << QString() << *text << QString() << rule;
    }
    return lines.join(kCrLf) + kCrLf;
}

void show_template_text(Context& ctx, const TemplateSections& fields) {
    const QString path = ctx.app.app_dir + QStringLiteral("/template.txt");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        throw RunError(QStringLiteral("Path/File access error: ") + path);
    }
    file.write(template_listing(fields, QDateTime::currentDateTime()).toUtf8());
    file.close();
    // The viewer is given what the file holds; the file itself lives only
    // as long as it takes to read it.
    QString shown;
    if (file.open(QIODevice::ReadOnly)) {
        shown = QString::fromUtf8(file.readAll());
        file.close();
    }
    ctx.shell.show_text(QStringLiteral("template.txt"), shown);
    delete_file(path);
}
