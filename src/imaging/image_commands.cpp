#include "imaging/image_commands.h"

#include "core/context.h"
#include "core/file_helpers.h"
#include "imaging/file_failures.h"
#include "imaging/resize_batch.h"
#include "imaging/resize_settings.h"

#include <QFileInfo>
#include <QTextStream>

int run_image_command(Context& ctx, const ImageCommand& command, QTextStream& out,
                      QTextStream& err) {
    AppState& app = ctx.app;
    const ResizeSettings settings = read_resize_settings(app.settings);
    apply_resize_settings(app, settings);
    if (!QFileInfo(command.target_directory).isDir()) {
        err << "The target directory " << command.target_directory << " does not exist.\n";
        return 1;
    }
    ResizeRun run;
    run.target_directory = command.target_directory;
    run.resize = command.resize;
    run.prefix = command.prefix;
    if (command.resize) {
        run.size = command.size.isEmpty() ? settings.max_size : command.size;
    } else {
        if (!command.size.isEmpty()) {
            app.thumbnail_size = command.size;
        }
        run.size = app.thumbnail_size;
    }
    run.paths = command.paths;
    run.written = [&out](const QString& path) {
        out << path << '\n';
        out.flush();
    };
    // Unlike the tab, the command goes on past a file it cannot read.
    FailureLog failures(err);
    run.failed = failures.sink();
    run_resize_batch(ctx, run);
    return failures.finish() == 0 ? 0 : 1;
}
