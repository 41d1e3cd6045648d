#include "imaging/scan_command.h"

#include "core/context.h"
#include "core/file_helpers.h"
#include "core/item_list.h"
#include "core/run_error.h"
#include "imaging/image_control.h"
#include "imaging/scanner.h"

#include <chrono>
#include <future>

namespace {

// Runs a scanner call on a thread of its own while the window keeps its
// turns: a scanner may take many seconds over one picture. The library is
// started and ended on that thread. Its errors reach the caller.
template <typename F>
auto off_the_window(Context& ctx, F&& work) {
    auto done = std::async(std::launch::async, std::forward<F>(work));
    while (done.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready) {
        ctx.ui.yield();
    }
    return done.get();
}

const QString kSearchFailed = QStringLiteral("An error occurred searching for a scanning device.");

// The remembered source when the machine still has it, else the first one.
QString source_to_use(const QString& remembered, Scanner& scanner) {
    const QList<Scanner::Source> sources = scanner.sources();
    if (sources.isEmpty()) {
        throw ScanError(kSearchFailed, true);
    }
    for (const Scanner::Source& s : sources) {
        if (s.name == remembered) {
            return s.name;
        }
    }
    return sources.constFirst().name;
}

struct BusyPointer {
    Context& ctx;
    explicit BusyPointer(Context& c) : ctx(c) { ctx.ui.set_busy(true); }
    ~BusyPointer() { ctx.ui.set_busy(false); }
};

}  // namespace

QString scan_file_name(const QString& chosen, QString* directory) {
    if (!chosen.contains(u'.')) {
        return chosen + QStringLiteral(".jpg");
    }
    QString dir, file;
    split_path(chosen, dir, file);
    if (directory) {
        *directory = dir;
    }
    const qsizetype dot = file.indexOf(u'.');
    if (dot < 0) {
        return chosen;
    }
    return dir + file.left(dot) + QStringLiteral(".jpg");
}

void select_scan_source(Context& ctx) {
    BusyPointer busy(ctx);
    try {
        const QList<Scanner::Source> sources = off_the_window(ctx, [] {
            Scanner scanner;
            return scanner.sources();
        });
        if (sources.isEmpty()) {
            throw ScanError(kSearchFailed, true);
        }
        const QString remembered = ctx.app.settings.read(kScanSection, kScanSourceKey);
        QStringList labels;
        int current = 0;
        for (const Scanner::Source& s : sources) {
            if (s.name == remembered) {
                current = static_cast<int>(labels.size());
            }
            labels << s.label;
        }
        const std::optional<QString> chosen =
            ctx.dialogs.choose_item(QStringLiteral("Select Source"), labels, current);
        if (!chosen) {
            return;
        }
        const auto row = labels.indexOf(*chosen);
        if (row >= 0) {
            ctx.app.settings.write(kScanSection, kScanSourceKey, sources.at(row).name);
        }
    } catch (const std::exception&) {
        ctx.dialogs.info(kSearchFailed);
    }
}

void scan_image(Context& ctx, ScanPanel& panel) {
    BusyPointer busy(ctx);
    ctx.ui.set_status(QStringLiteral("Loading scanning interface..."));
    ctx.ui.yield();
    try {
        const QString remembered = ctx.app.settings.read(kScanSection, kScanSourceKey);
        const QImage picture = off_the_window(ctx, [remembered] {
            Scanner scanner;
            return scanner.acquire(source_to_use(remembered, scanner));
        });
        ctx.ui.set_status(QString());
        panel.viewer.set_view_mode(1);
        if (!picture.isNull()) {
            panel.viewer.set_picture(picture);
            Dialogs::FileRequest request;
            request.title = QStringLiteral("Select New Image File Name");
            request.filter = QStringLiteral("JPG (*.jpg)|*.jpg|All Files (*.*)|*.*");
            request.initial_directory = ctx.app.last_directory;
            request.must_exist = false;
            const QString chosen = ctx.dialogs.open_file(request);
            if (!chosen.isEmpty()) {
                ctx.app.preview_file = chosen;
                const QString name = scan_file_name(chosen, &ctx.app.last_directory);
                panel.viewer.save_jpeg(name);
                bool listed = false;
                for (const QString& row : panel.files.items()) {
                    listed = listed || row.toLower() == name.toLower();
                }
                if (!listed) {
                    panel.files.add(name);
                }
            }
        }
        panel.fit();
        ctx.ui.set_status(QString());
    } catch (const ScanError& e) {
        ctx.ui.set_status(QString());
        ctx.dialogs.info(e.searching() ? kSearchFailed : e.text());
    } catch (const std::exception&) {
        ctx.ui.set_status(QString());
        ctx.dialogs.info(kSearchFailed);
    }
}
