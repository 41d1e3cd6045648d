#include "pages/template_expander.h"
#include "core/held_files.h"

#include "core/file_helpers.h"
#include "core/run_error.h"
#include "pages/expansion.h"
#include "pages/page_prefetch.h"
#include "pages/tag_text.h"

namespace {

// [date] and [time] of the header and the footer: now, when the entry of the
// file list that decides it holds a file; "" otherwise.
void date_and_time(QString& text, bool has_file) {
    passed_over([&] {
        replace_once(text, QStringLiteral("[date]"),
                     [&] { return has_file ? page_date() : QString(); });
    });
    passed_over([&] {
        replace_once(text, QStringLiteral("[time]"),
                     [&] { return has_file ? page_time() : QString(); });
    });
}

}  // namespace

void expand_template(Context& ctx, const PageOptions& page, const QString& template_name,
                     const QString& output_path, const QString& no_copy, const QString& max_height,
                     const QString& max_width, const QString& preview, const QString& next_page,
                     const QString& previous_page, const QString& first_page,
                     const QString& last_page, const TemplateSections* working) {
    Expansion e(ctx, page);
    e.template_name = template_name;
    e.output_path = output_path;
    e.no_copy = no_copy;
    e.max_height = max_height;
    e.max_width = max_width;
    e.preview = preview;
    e.next_page = next_page;
    e.previous_page = previous_page;
    e.first_page = first_page;
    e.last_page = last_page;
    e.run(working);
}

Expansion::Expansion(Context& ctx, const PageOptions& page)
    : ctx_(ctx), app_(ctx.app), page_(page) {}

Expansion::~Expansion() = default;

void Expansion::run(const TemplateSections* working) {
    ctx_.ui.set_busy(true);
    counter_ = 0;
    load(working);

    out_.setFileName(output_path);
    passed_over([&] {
        // A page named like the catalog or the settings file in use is not
        // written over, as a locked file was not.
        refuse_held_file(HeldFiles(app_), output_path);
        if (!out_.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            throw RunError(QStringLiteral("Path not found: ") + output_path);
        }
    });

    // The image tags of the first per-file section set how many files a
    // group takes; tags that come in through an include do not count.
    int slots = count_image_tags(t_.image1);
    if (slots == 0) {
        slots = 1;
    }

    passed_over([&] {
        prefetch_ = std::make_unique<PagePrefetch>(app_, t_, slots, no_copy.isEmpty(), max_height,
                                                   max_width);
    });

    QString header = t_.header;
    header_chain(header);
    write(header);

    const ItemList& files = app_.file_list;
    const int last_index = files.count() - 1;
    for (int i = 0; i <= last_index; i += slots) {
        if (page_.stop_requested()) {
            break;
        }
        group_copies_.clear();
        if (!t_.pre_image.isEmpty()) {
            QString text = t_.pre_image;
            passed_over([&] { expand_includes(text); });
            write(text);
        }
        for (pass_ = 0; pass_ < 2; ++pass_) {
            QString text = pass_ == 0 ? t_.image1 : t_.image2;
            for (k_ = i; k_ <= i + slots - 1; ++k_) {
                if (no_copy.isEmpty()) {
                    stage(k_);
                }
                file_chain(text, k_);
            }
            write(text);
        }
        if (!t_.post_image.isEmpty()) {
            QString text = t_.post_image;
            passed_over([&] { expand_includes(text); });
            write(text);
        }
    }

    QString footer = t_.footer;
    if (page_.make_slide_show) {
        footer_chain(footer);
    }
    passed_over([&] { expand_includes(footer); });
    write(footer);

    if (out_.isOpen()) {
        out_.close();
    }
    prefetch_.reset();
    ctx_.ui.set_busy(false);
}

void Expansion::load(const TemplateSections* working) {
    if (working) {
        t_ = *working;
        return;
    }
    // A fresh working copy starts from the template selected on the
    // Templates tab; the name asked for replaces it only when it has a row.
    bool found = false;
    passed_over([&] { found = load_template(app_, template_name, t_); });
    if (!found && !page_.listed_template.isEmpty()) {
        passed_over([&] { load_template(app_, page_.listed_template, t_); });
    }
}

void Expansion::write(const QString& text) {
    if (out_.isOpen()) {
        out_.write(page_bytes(text + kCrLf));
    }
}

void Expansion::header_chain(QString& text) {
    passed_over([&] { expand_includes(text); });
    passed_over([&] { refresh_line(text); });
    passed_over([&] {
        if (find_tag(text, QStringLiteral("[background]")) < 0) {
            return;
        }
        QString image = page_.background_image;
        if (!file_exists(image)) {
            return;  // the tag stays as it stands
        }
        const QString name = file_name_of(image);
        passed_over([&] { copy_file(image, page_.target_directory + u'/' + name); });
        replace_once(text, QStringLiteral("[background]"), name);
    });
    passed_over([&] { replace_once(text, QStringLiteral("[bgcolor]"), page_.background_color); });
    passed_over([&] { replace_once(text, QStringLiteral("[textcolor]"), page_.text_color); });
    date_and_time(text, !app_.file_list.item(0).isEmpty());
}

void Expansion::refresh_line(QString& text) {
    if (!page_.make_slide_show || next_page.isEmpty()) {
        return;
    }
    const QString meta_head = QStringLiteral("<meta http-equiv='refresh' content='") +
                              page_.slide_show_delay + QStringLiteral("; url=");
    const QString close_head = QStringLiteral("</head>") + kCrLf;
    qsizetype at = find_tag(text, QStringLiteral("<head>"));
    if (at >= 0) {
        const QString before = text.left(at + 6);
        const QString after = text.mid(at + 6);
        QString line = kCrLf + meta_head + next_page + QStringLiteral("'>") + kCrLf;
        if (find_tag(after, QStringLiteral("</head>")) < 0) {
            line += close_head;
        }
        text = before + line + after;
        return;
    }
    at = find_tag(text, QStringLiteral("<html>"));
    if (at >= 0) {
        const QString before = text.left(at + 6);
        const QString after = text.mid(at + 6);
        // This branch points at the fixed page "x.htm", whatever the next page is.
        QString line = kCrLf + QStringLiteral("<head>") + kCrLf + meta_head +
                       QStringLiteral("x.htm'>") + kCrLf;
        if (find_tag(after, QStringLiteral("</head>")) < 0) {
            line += close_head;
        }
        text = before + line + after;
    }
}

void Expansion::footer_chain(QString& text) {
    passed_over([&] { replace_once(text, QStringLiteral("[firstslide]"), first_page); });
    passed_over([&] { replace_once(text, QStringLiteral("[lastslide]"), last_page); });
    passed_over([&] {
        replace_once(text, QStringLiteral("[nextslide]"),
                     next_page.isEmpty() ? last_page : next_page);
    });
    passed_over([&] {
        replace_once(text, QStringLiteral("[previousslide]"),
                     previous_page.isEmpty() ? first_page : previous_page);
    });
    passed_over([&] {
        replace_once(text, QStringLiteral("[slidenav]"), [&] {
            QString nav;
            if (!previous_page.isEmpty()) {
                nav += QStringLiteral("<a href='") + first_page +
                       QStringLiteral("'>First</a>&nbsp;") + QStringLiteral("<a href='") +
                       previous_page + QStringLiteral("'>Previous</a>&nbsp;");
            }
            if (!next_page.isEmpty()) {
                nav += QStringLiteral("<a href='") + next_page +
                       QStringLiteral("'>Next</a>&nbsp;") + QStringLiteral("<a href='") +
                       last_page + QStringLiteral("'>Last</a>&nbsp;");
            }
            return nav;
        });
    });
    // The slot the walk reached lies past the end of the list once a group
    // has run, so these two expand only when the walk stopped before it began.
    date_and_time(text, !app_.file_list.item(k_).isEmpty());
}
