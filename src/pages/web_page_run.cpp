#include "pages/web_page_run.h"

#include "core/file_helpers.h"
#include "core/held_files.h"
#include "core/run_error.h"
#include "pages/tag_text.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString kLf = QStringLiteral("\n");

// Validation, in its fixed order; each failed test replaces the message, so
// only the last complaint reaches the user. Returns the message, "" when the
// run may go on.
QString validate(Context& ctx, WebPageRequest& request, const ItemList& main_list) {
    bool ok = true;
    QString message;
    const QString& target = request.page.target_directory;
    if (target.isEmpty()) {
        ok = false;
        message = QStringLiteral(
                      "The target directory is blank.  Please select the target directory where "
                      "all HTML files are created and images will be copied.") +
                  kLf + kLf;
    } else {
        int non_web = 0;
        const QString lower_target = target.toLower();
        for (int i = 0; i < main_list.count(); ++i) {
            const QString entry = main_list.item(i);
            if (!is_web_image(entry)) {
                ++non_web;
            }
            // A plain substring test: /pics also catches /pics2/a.jpg.
            if (entry.toLower().contains(lower_target)) {
                ok = false;
                message = QStringLiteral(
                              "One or more files are currently located in the target directory:") +
                          kLf + kLf + QStringLiteral("     ") + target + kLf + kLf +
                          QStringLiteral("Please select another target directory.");
                break;
            }
        }
        if (non_web > 0) {
            ctx.dialogs.info(non_web_notice(non_web));
        }
    }
    if (request.thumbnail_size.isEmpty()) {
        request.thumbnail_size = QStringLiteral("100");
    }
    ctx.app.thumbnail_size = request.thumbnail_size;
    if (request.image_template.isEmpty()) {
        ok = false;
        message = QStringLiteral("You must select a template.");
    }
    if (main_list.empty()) {
        ok = false;
        message = QStringLiteral("There are no files in the file list on the 'Main' tab.");
    }
    return ok ? QString() : message;
}

void clear_target_directory(Context& ctx, const QString& target) {
    if (!ctx.dialogs.ask_yes_no(
            QStringLiteral("Are you sure you want to delete ALL files in the ") + kLf + kLf +
            target + kLf + kLf + QStringLiteral(" directory?"))) {
        return;
    }
    ItemList& names = ctx.app.filelist;
    passed_over([&] {
        const QDir dir(target);
        if (!dir.exists()) {
            throw RunError(QStringLiteral("Path not found: ") + target);
        }
        names.set_items(dir.entryList(QDir::Files, QDir::Name | QDir::IgnoreCase));
    });
    // What the program holds (the open catalog, the settings, its own
    // programs) fails to delete and is passed over, as a locked file is.
    const HeldFiles held(ctx.app);
    // The walk runs one past the last entry, which names no file.
    for (int i = 0; i <= names.count(); ++i) {
        QString path = target + u'/' + names.item(i);
        if (file_exists(path)) {
            ctx.ui.set_status(QStringLiteral("Deleting ") + path);
            passed_over([&] { delete_unheld_file(held, path); });
        }
    }
    ctx.ui.set_status(QString());
}

WebPageResult slide_show(Context& ctx, WebPageRequest& request, ItemList& main_list) {
    AppState& app = ctx.app;
    PageOptions& page = request.page;
    WebPageResult result;
    if (page.slide_show_delay.isEmpty()) {
        page.slide_show_delay = QStringLiteral("5");
    }
    // The last page is named before missing files go, and not again after.
    QString last_page;
    passed_over([&] { last_page = slide_page_name(main_list.item(main_list.count() - 1)); });
    remove_missing_files(main_list);

    QString first_page;
    QString previous_page;
    QString page_to_open;
    const int last_index = main_list.count() - 1;
    Progress progress(ctx.ui, last_index + 1);
    for (int i = 0; i <= last_index; ++i) {
        progress.step(i);
        ctx.ui.yield();
        if (page.stop_requested()) {
            break;
        }
        app.file_list.clear();
        app.file_list.add(main_list.item(i));
        app.thumbnail_target_directory = page.target_directory;
        QString output_path;
        if (first_page.isEmpty()) {
            output_path = join_path(page.target_directory, request.image_page);
            page_to_open = output_path;
            first_page = request.image_page;
            previous_page.clear();
        } else {
            output_path = join_path(page.target_directory, slide_page_name(main_list.item(i)));
        }
        QString next_page;
        if (i == last_index) {
            if (request.slide_show_loop) {
                next_page = first_page;
            }
        } else {
            next_page = slide_page_name(main_list.item(i + 1));
        }
        const QString limit = request.max_size;
        app.thumbnail_size = request.thumbnail_size;
        expand_template(ctx, page, request.image_template, output_path, QString(), limit, limit,
                        QStringLiteral("no"), next_page, previous_page, first_page, last_page);
        // The link back is the full path of the page just written: it works
        // on this machine, where the show was made.
        previous_page = output_path;
    }
    if (page.stop_requested()) {
        result.stopped = true;
    } else {
        ctx.shell.open_document(page_to_open);
        result.first_page = page_to_open;
    }
    return result;
}

WebPageResult single_page(Context& ctx, WebPageRequest& request, ItemList& main_list) {
    AppState& app = ctx.app;
    const PageOptions& page = request.page;
    remove_missing_files(main_list);
    app.file_list.clear();
    app.file_list.add_many(main_list.items());
    app.thumbnail_target_directory = page.target_directory;
    const QString output_path = join_path(page.target_directory, request.image_page);
    const QString limit = request.max_size;
    app.thumbnail_size = request.thumbnail_size;
    expand_template(ctx, page, request.image_template, output_path, QString(), limit, limit,
                    QStringLiteral("no"), QString(), QString(), QString(), QString());
    // The page opens even when the run was stopped.
    ctx.shell.open_document(output_path);
    WebPageResult result;
    result.first_page = output_path;
    result.stopped = page.stop_requested();
    return result;
}

}  // namespace

QString non_web_notice(int count) {
    if (count == 1) {
        return QStringLiteral(
            "There is 1 file in the main file list that is not a web image (GIF or JPG/JPEG).");
    }
    return QStringLiteral("There are ") + QString::number(count) +
           QStringLiteral(
               " files in the main file list that are not web images (GIF or JPG/JPEG).");
}

QString total_file_size_text(const ItemList& main_list) {
    qint64 total = 0;
    for (const QString& entry : main_list.items()) {
        if (file_exists_at(entry)) {
            total += QFileInfo(entry).size();
        }
    }
    const qint64 hundredths = static_cast<qint64>(100.0 * static_cast<double>(total) / 1457664.0);
    QString text = QString::number(static_cast<double>(hundredths) / 100.0, 'f', 2);
    while (text.endsWith(u'0')) {
        text.chop(1);
    }
    if (text.endsWith(u'.')) {
        text.chop(1);
    }
    return text;
}

void remove_missing_files(ItemList& list) {
    const int last_index = list.count() - 1;
    for (int i = 0; i <= last_index; ++i) {
        passed_over([&] {
            QString path = list.item(i);
            if (!file_exists(path)) {
                list.remove(i);
            }
        });
    }
}

WebPageResult create_web_pages(Context& ctx, WebPageRequest& request, ItemList& main_list) {
    ctx.ui.set_busy(true);
    WebPageResult result;
    const QString message = validate(ctx, request, main_list);
    if (!message.isEmpty()) {
        ctx.dialogs.info(message);
        result.refused = true;
    } else {
        if (request.delete_files) {
            clear_target_directory(ctx, request.page.target_directory);
        }
        result = request.page.make_slide_show ? slide_show(ctx, request, main_list)
                                              : single_page(ctx, request, main_list);
    }
    ctx.ui.set_busy(false);
    return result;
}
