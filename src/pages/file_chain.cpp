#include "catalog/database.h"
#include "core/file_helpers.h"
#include "core/held_files.h"
#include "core/run_error.h"
#include "imaging/image_control.h"
#include "imaging/image_engine.h"
#include "imaging/numeric_text.h"
#include "pages/expansion.h"
#include "pages/page_prefetch.h"
#include "pages/tag_text.h"

#include <QFileInfo>

namespace {

const QString kDemoText = QStringLiteral("This is the demo demonstration text.");
const QString kDemoTitle = QStringLiteral("This is the demo title text.");

}  // namespace

// Staging one file of the slot beside the page: a web image larger than the
// limits becomes a resized JPEG, anything else is copied as it is. A file
// that comes from the application's temp directory is moved, not copied.
void Expansion::stage(int k) {
    source_path_ = app_.file_list.item(k);
    const QString name = file_name_of(source_path_);
    target_path_ =
        previewing() ? directory_of(output_path) + name : page_.target_directory + u'/' + name;
    if (is_web_image(source_path_)) {
        if (file_exists(source_path_)) {
            reported(source_path_, [&] { app_.worker->set_file_name(source_path_); });
            passed_over([&] { read_image_size(image_height_, image_width_); });
        }
        bool resize = false;
        const double limit_h = val_of_text(max_height);
        const double limit_w = val_of_text(max_width);
        if (limit_h != 0 && limit_w != 0) {
            resize = limit_h < val_of_text(image_height_) || limit_w < val_of_text(image_width_);
        }
        if (resize) {
            QString directory;
            QString file;
            split_path(target_path_, directory, file);
            ctx_.ui.set_status(QStringLiteral("Creating image ") + source_path_);
            target_path_ = source_path_;
            if (prefetch_) {
                prefetch_->at_resize(pass_, k);
            }
            reported(source_path_, [&] {
                resize_to_directory(ctx_, target_path_, directory, max_height, max_width,
                                    page_.failed);
            });
            // The page names the JPEG by the path cut at its first dot, so a
            // dot in a directory's name cuts the path there.
            passed_over([&] {
                const qsizetype dot = target_path_.indexOf(u'.');
                if (dot < 0) {
                    throw RunError(QStringLiteral("Invalid procedure call or argument"));
                }
                local_file_ = target_path_.left(dot) + QStringLiteral(".jpg");
            });
        } else {
            copy_to_target();
        }
    } else {
        copy_to_target();
    }
    passed_over([&] {
        if (directory_of(source_path_).compare(app_.temp_directory() + u'/', Qt::CaseInsensitive) ==
            0) {
            delete_file(source_path_);
        }
    });
}

StagedCopy StagedCopy::of(const QString& source, const QString& target) {
    const QFileInfo from(source);
    const QFileInfo to(target);
    return {source, target, from.size(), from.lastModified(), to.size(), to.lastModified()};
}

bool StagedCopy::still_there(const QString& from, const QString& to) const {
    if (from != source || to != target || source.isEmpty()) {
        return false;
    }
    const StagedCopy now = of(from, to);
    return now.source_size == source_size && now.source_time == source_time &&
           now.target_size == target_size && now.target_time == target_time;
}

void Expansion::copy_to_target() {
    if (source_path_.size() < 71) {
        ctx_.ui.set_status(QStringLiteral("Copying ") + source_path_);
    } else {
        ctx_.ui.set_status(QStringLiteral("Copying ...") + source_path_.right(70));
    }
    const auto done = group_copies_.constFind(target_path_);
    if (done == group_copies_.constEnd() || !done->still_there(source_path_, target_path_)) {
        reported(source_path_, [&] {
            refuse_held_file(HeldFiles(app_), target_path_);
            copy_file(source_path_, target_path_);
            group_copies_.insert(target_path_, StagedCopy::of(source_path_, target_path_));
        });
    }
    local_file_ = target_path_;
}

void Expansion::read_image_size(QString& height, QString& width) {
    const ImageControl& worker = *app_.worker;
    height = size_text(worker.has_picture() ? worker.image_height() : 0);
    width = size_text(worker.has_picture() ? worker.image_width() : 0);
}

QString Expansion::catalog_field(const QString& field, const QString& entry) {
    Recordset& rs = app_.shared_recordset;
    QString value;
    // A failed lookup leaves the former recordset current, so the count and
    // the field below are then those of the file before.
    passed_over([&] {
        rs.open(app_.database,
                Sql(QStringLiteral("select * from filenames where filename = '%1'")).arg(entry));
    });
    passed_over([&] {
        if (rs.record_count() == 1) {
            value = rs.text_or_empty(field);
        }
    });
    return value;
}

QString Expansion::thumbnail_tag() {
    const QString page_name = file_name_of(local_file_);
    if (app_.thumbnail_target_directory.isEmpty()) {
        app_.thumbnail_target_directory = directory_of(local_file_);
    }
    if (prefetch_) {
        prefetch_->at_thumbnail(pass_, k_);
    }
    // The thumbnail is made from the picture the worker holds. Staging loads
    // only web images into it, so a file of another type is loaded here:
    // otherwise its thumbnail would show the web image staged before it.
    if (app_.worker->file_name() != source_path_) {
        reported(source_path_, [&] { app_.worker->set_file_name(source_path_); });
    }
    const QString source = source_path_;
    reported(source, [&] {
        make_image_file(ctx_, source_path_, app_.thumbnail_target_directory,
                        QStringLiteral("thumbnail"), QString(), QString(), page_.failed);
    });
    const QString name = file_name_of(source_path_);
    if (!is_web_image(name)) {
        return name;
    }
    return QStringLiteral("<a href='") + page_name + QStringLiteral("'><img src='") + name +
           QStringLiteral("'></a>");
}

// The per-file tags, in their fixed order, each by the replace-once rule.
// An empty slot (the list ran out in the last group) empties the tags.
void Expansion::file_chain(QString& text, int k) {
    const QString entry = app_.file_list.item(k);
    const bool filled = !entry.isEmpty();
    const auto tag = [&](const char* name, const std::function<QString()>& value) {
        passed_over([&] { replace_once(text, QLatin1String(name), value); });
    };
    const auto field = [&](const QString& column, const QString& sample) {
        return [&, column, sample] {
            if (!filled) {
                return QString();
            }
            return previewing() ? sample : catalog_field(column, entry);
        };
    };

    tag("[catalog]", field(QStringLiteral("catalog"), kDemoText));
    tag("[counter]", [&] { return filled ? QString::number(++counter_) : QString(); });
    tag("[date]", [&] { return filled ? page_date() : QString(); });
    tag("[description]", field(QStringLiteral("description"), kDemoText));
    tag("[filename]", [&] { return filled ? file_name_of(target_path_) : QString(); });
    tag("[filepath]", [&] { return filled ? directory_of(source_path_) : QString(); });
    tag("[href_local_filename]", [&] {
        return filled
                   ? QStringLiteral("<a href='") + local_file_ + QStringLiteral("'>") + local_file_
                   : QString();
    });
    tag("[href_web_filename]", [&] {
        const QString name = file_name_of(local_file_);
        return filled ? QStringLiteral("<a href='") + name + QStringLiteral("'>") + name
                      : QString();
    });
    if (filled) {
        // A file that is not there fails the step, and the tag stays.
        tag("[filesize]", [&] { return QString::number(file_length(local_file_)); });
    }
    tag("[imgpixel]", [&] {
        read_image_size(image_height_, image_width_);
        return image_height_ + QStringLiteral(" X ") + image_width_;
    });
    tag("[imgpixelh]", [&] {
        read_image_size(image_height_, image_width_);
        return image_height_;
    });
    tag("[imgpixelw]", [&] {
        read_image_size(image_height_, image_width_);
        return image_width_;
    });
    tag("[imgsrc]", [&] {
        if (!filled) {
            return QString();
        }
        const QString name = file_name_of(local_file_);
        return is_web_image(local_file_)
                   ? QStringLiteral("<img src='") + name + QStringLiteral("'>")
                   : name;
    });
    passed_over([&] { expand_includes(text); });
    tag("[timgsrc]", [&] { return filled ? thumbnail_tag() : QString(); });
    tag("[time]", [&] { return filled ? page_time() : QString(); });
    tag("[title]", field(QStringLiteral("title"), kDemoTitle));
}
