#pragma once

#include "pages/template_expander.h"

#include <QDateTime>
#include <QFile>
#include <QHash>
#include <QString>

#include <memory>

class PagePrefetch;

// A file staged by copying. Each file of a group is staged once for each
// per-file section; when the second staging finds the same copy of the same
// file still in place, unchanged on both sides, the bytes are already there
// and are not copied again.
struct StagedCopy {
    QString source;
    QString target;
    qint64 source_size = -1;
    QDateTime source_time;
    qint64 target_size = -1;
    QDateTime target_time;

    static StagedCopy of(const QString& source, const QString& target);
    bool still_there(const QString& source, const QString& target) const;
};

// The working values of one call of expand_template: the template, the
// output file and the values of the file in the current slot. Used by
// template_expander.cpp (the order of work, header and footer) and
// file_chain.cpp (staging and the per-file tags).
class Expansion {
public:
    Expansion(Context& ctx, const PageOptions& page);
    ~Expansion();

    // The call's arguments.
    QString template_name;
    QString output_path;
    QString no_copy;
    QString max_height;
    QString max_width;
    QString preview;
    QString next_page;
    QString previous_page;
    QString first_page;
    QString last_page;

    void run(const TemplateSections* working);

private:
    // template_expander.cpp
    void load(const TemplateSections* working);
    void write(const QString& text);
    void header_chain(QString& text);
    void refresh_line(QString& text);
    void footer_chain(QString& text);

    // file_chain.cpp
    void stage(int k);
    void copy_to_target();
    void file_chain(QString& text, int k);
    QString catalog_field(const QString& field, const QString& entry);
    void read_image_size(QString& height, QString& width);
    QString thumbnail_tag();

    bool previewing() const { return preview == QLatin1String("yes"); }

    // A step of the staging of file `path`, passed over when it fails; the
    // run's failure sink, when it has one, is told (not of the empty slots
    // of a last group, which fail for want of a file).
    template <typename F>
    void reported(const QString& path, F&& step) {
        try {
            step();
        } catch (const std::exception& e) {
            if (page_.failed && !path.isEmpty()) {
                page_.failed(path, failure_text(e));
            }
        }
    }

    Context& ctx_;
    AppState& app_;
    const PageOptions& page_;
    TemplateSections t_;
    QFile out_;

    int counter_ = 0;
    int k_ = 0;     // the slot the file walk reached, read again by the footer
    int pass_ = 0;  // 0 while the first per-file section is filled, 1 the second
    std::unique_ptr<PagePrefetch> prefetch_;
    QHash<QString, StagedCopy> group_copies_;  // by target, for the group being walked
    QString source_path_;
    QString target_path_;
    QString local_file_;
    QString image_height_;
    QString image_width_;
};
