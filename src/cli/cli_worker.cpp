#include "cli/cli.h"

#include "imaging/image_control.h"

// The picture program's worker, made as the window's is.
ImageControl* make_cli_worker() {
    return new ImageControl(ImageControl::kWorkerTwips);
}

void free_cli_worker(ImageControl* worker) {
    delete worker;
}
