#include "pages/index_run.h"

#include "core/file_helpers.h"
#include "core/held_files.h"
#include "core/run_error.h"
#include "imaging/image_control.h"
#include "imaging/image_engine.h"
#include "pages/tag_text.h"
#include "pages/template_store.h"

#include <QFile>

using namespace index_choice;

namespace {

const QString kIndex = QStringLiteral("Index");

// One page of the index, written line by line; each write ends in CR LF. A
// page that cannot be opened, or that would write over a file the program
// holds, takes no writes, and the run goes on.
class PageFile {
public:
    PageFile(const QString& path, const HeldFiles& held) : file_(path) {
        passed_over([&] {
            refuse_held_file(held, path);
            if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
                throw RunError(QStringLiteral("Path/File access error: ") + path);
            }
        });
    }
    void write(const QString& text) {
        if (file_.isOpen()) {
            file_.write((text + kCrLf).toUtf8());
        }
    }

private:
    QFile file_;
};

// How the rows of the link table differ between the three frame types.
struct LinkRows {
    QString prefix;
    QString target_checked;
    QString target_unchecked;
    QString font_line;
    QStringList closing;
};

LinkRows link_rows(int frame_type) {
    switch (frame_type) {
        case kTopLeftRight:
            // No closing font and no closing row.
            return {QStringLiteral("    <A href='"),
                    QStringLiteral("' target='_blank'"),
                    QStringLiteral("' target='body'"),
                    QStringLiteral("          <font size=-1>"),
                    {QStringLiteral("        </td>")}};
        case kLeftRight:
            return {QStringLiteral("          <A href='"),
                    QStringLiteral("' target='_blank'"),
                    QStringLiteral("' target='body'"),
                    QStringLiteral("          <font size=-1>"),
                    {QStringLiteral("        </td>"), QStringLiteral("      </tr>")}};
        default:
            // With no frames, "body" names a window of its own.
            return {QStringLiteral("          <A href='"),
                    QStringLiteral("' target='body'"),
                    QStringLiteral("'"),
                    QStringLiteral("        <font size=-1>"),
                    {QStringLiteral("        </font>"), QStringLiteral("        </td>"),
                     QStringLiteral("      </tr>")}};
    }
}

class IndexRun {
public:
    IndexRun(Context& ctx, const IndexRequest& r, const ItemList& main_list)
        : ctx_(ctx), r_(r), main_list_(main_list) {}

    void ask_before_replacing();
    void write_pages();
    QString url() const { return QStringLiteral("file://") + index_path(); }

private:
    // The file names are joined with no test for a closing separator.
    QString path_of(const QString& name) const { return r_.target_directory + u'/' + name; }
    QString index_path() const { return path_of(r_.index_file_name); }
    QString top_path() const { return path_of(r_.top_frame_file_name); }
    QString left_path() const { return path_of(r_.left_frame_file_name); }
    QString right_path() const { return path_of(r_.right_frame_file_name); }

    // Reads header and footer of a template, each step passed over: with no
    // row the sections read last stay in force, and when the statement fails
    // (an apostrophe in the name) the former recordset is read instead.
    void read_template(const QString& name) {
        Recordset& rs = ctx_.app.shared_recordset;
        passed_over([&] { rs.open(ctx_.app.database, template_row_sql(name)); });
        passed_over([&] { header_ = rs.text_or_empty(QStringLiteral("header")); });
        passed_over([&] { footer_ = rs.text_or_empty(QStringLiteral("footer")); });
        passed_over([&] { rs.close(); });
    }
    void write_link_table(PageFile& page);
    QString thumbnail_of(const QString& name);

    Context& ctx_;
    const IndexRequest& r_;
    const ItemList& main_list_;
    QString header_;
    QString footer_;
};

void IndexRun::ask_before_replacing() {
    struct Page {
        QString path;
        bool in_use;
    };
    const bool framed = r_.frame_type == kTopLeftRight || r_.frame_type == kLeftRight;
    const Page pages[] = {{top_path(), r_.frame_type == kTopLeftRight},
                          {left_path(), framed},
                          {right_path(), framed},
                          {index_path(), true}};
    Dialogs::Answer answer = Dialogs::Answer::Yes;
    for (size_t i = 0; i < std::size(pages); ++i) {
        QString path = pages[i].path;
        if (!pages[i].in_use) {
            if (file_exists(path)) {
                passed_over([&] { delete_unheld_file(HeldFiles(ctx_.app), path); });
            }
            continue;
        }
        // The reply spares no file: the pages are written whatever it is. It
        // only ends the questions for the pages that follow.
        if ((answer == Dialogs::Answer::Yes || i == 0) && file_exists(path)) {
            answer = ctx_.dialogs.message(
                path + QStringLiteral(" already exists.  Do you want to replace this file?"),
                Dialogs::Buttons::YesNoCancel, Dialogs::Icon::Question);
        }
    }
}

QString IndexRun::thumbnail_of(const QString& name) {
    // The copy in the target directory is used, not the entry of the list.
    QString path = r_.target_directory + u'/' + name;
    passed_over([&] { ctx_.app.worker->set_file_name(path); });
    passed_over([&] {
        make_image_file(ctx_, path, r_.target_directory, QStringLiteral("thumbnail"),
                        r_.thumbnail_size, r_.thumbnail_size);
    });
    return file_name_of(path);
}

void IndexRun::write_link_table(PageFile& page) {
    const LinkRows rows = link_rows(r_.frame_type);
    const QString& target = r_.new_browser ? rows.target_checked : rows.target_unchecked;
    page.write(QStringLiteral("    <table>"));
    for (int i = 0; i < main_list_.count(); ++i) {
        const QString name = file_name_of(main_list_.item(i));
        page.write(QStringLiteral("      <tr>"));
        page.write(QStringLiteral("        <td>"));
        page.write(QStringLiteral("          <font size=-1>") + QString::number(i + 1) +
                   QStringLiteral(".</font>"));
        page.write(QStringLiteral("        </td>"));
        page.write(QStringLiteral("        <td>"));
        page.write(rows.font_line);
        QString shown = name;
        if (r_.index_type == kThumbnails) {
            const QString thumb = thumbnail_of(name);
            if (is_web_image(thumb)) {
                shown = QStringLiteral("<img src='") + thumb + QStringLiteral("'>");
            }
        }
        page.write(rows.prefix + name + target + u'>' + shown + QStringLiteral("</A><BR>"));
        for (const QString& line : rows.closing) {
            page.write(line);
        }
    }
    page.write(QStringLiteral("    </table>"));
}

void IndexRun::write_pages() {
    // The frame tags are replaced in the header as read, so a template that
    // cannot be read after it leaves the replaced header in force.
    QString& header = header_;
    const HeldFiles held(ctx_.app);
    if (r_.frame_type == kNoFrames) {
        read_template(r_.no_frame);
        PageFile index(index_path(), held);
        index.write(header);
        write_link_table(index);
        index.write(footer_);
        return;
    }

    // The frameset: the three frame tags, once each, in its header only; its
    // footer is not written.
    read_template(r_.no_frame);
    replace_once(header, QStringLiteral("[rightframefilename]"), r_.right_frame_file_name);
    replace_once(header, QStringLiteral("[topframefilename]"), r_.top_frame_file_name);
    replace_once(header, QStringLiteral("[leftframefilename]"), r_.left_frame_file_name);
    PageFile(index_path(), held).write(header);

    if (r_.frame_type == kTopLeftRight) {
        read_template(r_.top_frame);
        PageFile top(top_path(), held);
        top.write(header);
        top.write(footer_);
    }

    read_template(r_.left_frame);
    replace_once(header, QStringLiteral("[rightframefilename]"), r_.right_frame_file_name);
    {
        PageFile left(left_path(), held);
        left.write(header);
        write_link_table(left);
        left.write(footer_);
    }

    // The right frame's footer is written for Left/Right only.
    read_template(r_.right_frame);
    PageFile right(right_path(), held);
    right.write(header);
    if (r_.frame_type == kLeftRight) {
        right.write(footer_);
    }
}

}  // namespace

QString frame_type_setting(int frame_type) {
    switch (frame_type) {
        case kNoFrames:
            return QStringLiteral("None");
        case kTopLeftRight:
            return QStringLiteral("Top/Left/Right");
        case kLeftRight:
            return QStringLiteral("Left/Right");
        default:
            return QString();
    }
}

QString index_type_setting(int index_type) {
    switch (index_type) {
        case kThumbnails:
            return QStringLiteral("Thumbnail");
        case kFileNames:
            return QStringLiteral("File Name");
        default:
            return QString();
    }
}

QString index_refusal(const IndexRequest& r, const ItemList& main_list) {
    QString message;
    if (r.top_frame_file_name.isEmpty()) {
        message =
            QStringLiteral("You must enter a valid file name for the Top frame (ex: top.htm).");
    }
    if (r.left_frame_file_name.isEmpty()) {
        message = QStringLiteral(
            "You must enter a valid file name for the Left frame or table of contents (ex: "
            "toc.htm).");
    }
    if (r.right_frame_file_name.isEmpty()) {
        message = QStringLiteral(
            "You must enter a valid file name for the right frame or main content page (ex: "
            "toc.htm).");
    }
    if (r.target_directory.isEmpty()) {
        message = QStringLiteral(
            "You must select the target directory for the index file to be created.");
    }
    if (r.index_file_name.isEmpty()) {
        message =
            QStringLiteral("You must enter a valid file name for the index page (ex: index.htm).");
    }
    if (r.index_type == kNotSet) {
        message = QStringLiteral(
            "You must select the type of index you want to create (use thumbnails or file "
            "names).");
    }
    if (main_list.empty()) {
        message = QStringLiteral(
            "There must be at least one file in the file list on the 'Main' tab.  You will need "
            "to load one or more files using the 'Load' tab.");
    }
    if (r.frame_type == kNotSet) {
        message =
            QStringLiteral("You must select the frame type (none, top/left/right, left/right).");
    }
    if (r.no_frame.isEmpty()) {
        message = QStringLiteral("The template for the index must be selected.");
    }
    const QString left = QStringLiteral("The template for the left frame must be selected.");
    const QString right = QStringLiteral("The template for the right frame must be selected.");
    if (r.frame_type == kTopLeftRight) {
        if (r.top_frame.isEmpty()) {
            message = QStringLiteral("The template for the top frame must be selected.");
        }
        if (r.left_frame.isEmpty()) {
            message = left;
        }
        if (r.right_frame.isEmpty()) {
            message = right;
        }
    }
    if (r.frame_type == kLeftRight) {
        if (r.left_frame.isEmpty()) {
            message = left;
        }
        if (r.right_frame.isEmpty()) {
            message = right;
        }
    }
    if (main_list.empty()) {
        message = QStringLiteral(
            "There are no files in the list on the 'Main' tab.  No index will be created.");
    }
    return message;
}

IndexResult create_index(Context& ctx, const IndexRequest& r, const ItemList& main_list) {
    IndexResult result;
    const QString refusal = index_refusal(r, main_list);
    if (!refusal.isEmpty()) {
        ctx.dialogs.info(refusal);
        result.refused = true;
        return result;
    }
    ctx.dialogs.info(
        QStringLiteral("NO images or files are copied using this option.  The HTML pages are "
                       "created in the target directory as specified."));
    IndexRun run(ctx, r, main_list);
    run.ask_before_replacing();
    if (r.index_type == kThumbnails && r.prepare_thumbnails) {
        passed_over([&] { r.prepare_thumbnails(); });
    }
    passed_over([&] {
        ctx.app.settings.write(kIndex, QStringLiteral("Frame Type"),
                               frame_type_setting(r.frame_type));
    });
    run.write_pages();
    result.opened = run.url();
    passed_over([&] { ctx.shell.open_document(result.opened); });
    return result;
}
